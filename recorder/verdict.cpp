#include "recorder/verdict.h"

#include "recorder/options.h"
#include "recorder/words.h"

namespace corvane::recorder {

std::string Verdict::Outcome(Language language) const {
    const std::string count = WantedKadrs == UntilInterrupted ? Counted(Kadrs, KadrNoun, language)
                                                              : SayIn(language, "{} of {} kadrs", Kadrs, WantedKadrs);
    if (HowItEnded == End::Complete) {
        if (!Measured()) return SayIn(language, "all kadrs written, but not all measured");
        return Doubts.empty() ? SayIn(language, "complete") : SayIn(language, "complete, but doubtful");
    }
    if (HowItEnded == End::Continued) return SayIn(language, "continued in {}", Reason);
    if (HowItEnded == End::Unknown) {
        return SayIn(language, "incomplete: {}, the recording was still running, or was ended by force", count);
    }
    if (HowItEnded == End::Interrupted) return SayIn(language, "interrupted: {}", count);
    return SayIn(language, "incomplete: {}, {}", count, language == Language::English ? Reason : Translated(Reason));
}

ExitCode Verdict::Code() const {
    if (HowItEnded == End::Interrupted) return ExitCode::Interrupted;
    return HowItEnded == End::Complete && Doubts.empty() && Measured() ? ExitCode::Success : ExitCode::Incomplete;
}

}  // namespace corvane::recorder
