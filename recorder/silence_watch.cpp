#include "recorder/silence_watch.h"

#include <fmt/format.h>
#include <algorithm>

namespace corvane::recorder {
namespace {

constexpr auto Interval = std::chrono::seconds(10);  // for each telling of a silence
constexpr int AtOnce = 5;                            // tellings before they have to wait for each other

}  // namespace

std::string SilenceWatch::Observe(std::optional<GapReason> missing, Clock::time_point now) {
    // A receive that was cut short brought something, and the next one will show whether more comes.
    const bool silent = missing && *missing != GapReason::CutShort;
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
    std::string text = reason == GapReason::NotProcessed
                           ? fmt::format("What the module in slot {} sends can't be processed by its library.", Slot_)
                           : fmt::format(
                                 "The module in slot {} sends nothing: check the crate, its cable and the LTR "
                                 "server.",
                                 Slot_);
    if (Untold_ > 0) text += fmt::format(" (Silences not told meanwhile: {}.)", Untold_);
    Untold_ = 0;
    return text;
}

std::string SilenceWatch::TellReturn(Clock::time_point now) {
    const double seconds = std::chrono::duration<double>(now - *Since_).count();
    const bool told = Told_.has_value();
    if (!told) Untold_++;
    Since_.reset();
    Told_.reset();
    return told ? fmt::format("The module in slot {} sends again after {:.1f} s.", Slot_, seconds) : "";
}

}  // namespace corvane::recorder
