// How a recording ended, and what follows from that: an outcome in words and an exit code.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "driver/model/gap.h"
#include "recorder/failure.h"
#include "recorder/messages.h"

namespace corvane::recorder {

enum class End {
    Complete,
    Interrupted,
    Stalled,
    Stopped,
    Continued,  // in another file, which Reason names
    Unknown,    // not yet, or by force
};

struct Verdict {
    End HowItEnded = End::Complete;
    std::string Reason;               // why data stopped coming, in English: of Stalled and Stopped
    int64_t Kadrs = 0;                // recorded
    int64_t WantedKadrs = 0;          // or UntilInterrupted
    std::vector<std::string> Doubts;  // a line for each reason to doubt the data, in English
    std::vector<Gap> Gaps;            // what was not measured
    int Unfitted = 0;                 // recorded channels without a mezzanine, where nothing can be measured

    // "complete", or what is the matter.
    std::string Outcome(Language language) const;
    bool Measured() const { return Gaps.empty() && Unfitted == 0; }
    ExitCode Code() const;
};

}  // namespace corvane::recorder
