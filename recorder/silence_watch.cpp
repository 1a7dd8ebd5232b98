#include "recorder/silence_watch.h"

#include <algorithm>

#include "recorder/messages.h"

namespace corvane::recorder {
namespace {

constexpr auto Interval = std::chrono::seconds(10);  // for each telling of a silence
constexpr int AtOnce = 5;                            // tellings before they have to wait for each other

}  // namespace

std::string SilenceWatch::Observe(std::optional<GapReason> missing, Clock::time_point now) {
    // A receive that was cut short brought something, and a gap for various reasons doesn't tell: what was measured
    // between its parts is not known.
    const bool silent = missing == GapReason::NothingCame || missing == GapReason::NotProcessed;
    if (!silent) return missing || !Since_ ? "" : TellReturn(now);
    if (!Since_) Since_ = now;
    return Told_ != missing && MayTell(now) ? TellSilence(*missing) : "";
}

bool SilenceWatch::MayTell(Clock::time_point now) {
    const Clock::time_point spent = std::max(Spent_, now) + Interval;
    if (spent > now + AtOnce * Interval) return false;
    Spent_ = spent;
    return true;
}

std::string SilenceWatch::TellSilence(GapReason reason) {
    Told_ = reason;
    std::string text =
        reason == GapReason::NotProcessed
            ? Say("What the module in slot {} sends can't be processed by its library.", Slot_)
            : Say("The module in slot {} sends nothing: check the crate, its cable and the LTR server.", Slot_);
    if (Untold_ > 0) text += ' ' + Say("(Silences not told meanwhile: {}.)", Untold_);
    Untold_ = 0;
    return text;
}

std::string SilenceWatch::TellReturn(Clock::time_point now) {
    const double seconds = std::chrono::duration<double>(now - *Since_).count();
    const bool told = Told_.has_value();
    if (!told) Untold_++;
    Since_.reset();
    Told_.reset();
    return told ? Say("The module in slot {} sends again after {:.1f} s.", Slot_, seconds) : "";
}

}  // namespace corvane::recorder
