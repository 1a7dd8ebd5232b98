#include "recorder/verdict.h"

#include <fmt/format.h>

#include "recorder/options.h"
#include "recorder/words.h"

namespace corvane::recorder {

std::string Verdict::Outcome() const {
    const std::string count =
        WantedKadrs == UntilInterrupted ? Counted(Kadrs, "kadr") : fmt::format("{} of {} kadrs", Kadrs, WantedKadrs);
    if (HowItEnded == End::Complete) {
        if (!Measured()) return "all kadrs written, but not all measured";
        return Doubts.empty() ? "complete" : "complete, but doubtful";
    }
    if (HowItEnded == End::Continued) return "continued in " + Reason;
    if (HowItEnded == End::Unknown) {
        return fmt::format("incomplete: {}, the recording was still running, or was ended by force", count);
    }
    if (HowItEnded == End::Interrupted) return "interrupted: " + count;
    return fmt::format("incomplete: {}, {}", count, Reason);
}

ExitCode Verdict::Code() const {
    if (HowItEnded == End::Interrupted) return ExitCode::Interrupted;
    return HowItEnded == End::Complete && Doubts.empty() && Measured() ? ExitCode::Success : ExitCode::Incomplete;
}

}  // namespace corvane::recorder
