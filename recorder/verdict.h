// How a recording ended, and what follows from that: an outcome in words and an exit code.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "recorder/failure.h"

namespace corvane::recorder {

enum class End { Complete, Interrupted, Stalled, Stopped };

struct Verdict {
    End HowItEnded = End::Complete;
    std::string Reason;  // why data stopped coming: of Stalled and Stopped
    int64_t Kadrs = 0;   // recorded
    int64_t WantedKadrs = 0;
    std::vector<std::string> Doubts;  // a line for each reason to doubt the data

    // "complete", or what is the matter.
    std::string Outcome() const;
    ExitCode Code() const;
};

}  // namespace corvane::recorder
