// Tells when a module falls silent and when it measures again, each at once. Of a module that does so again and again,
// the first few times are told, later ones every ten seconds at most.
#pragma once

#include <chrono>
#include <optional>
#include <string>

#include "driver/model/gap.h"

namespace corvane::recorder {

class SilenceWatch {
public:
    using Clock = std::chrono::steady_clock;

    explicit SilenceWatch(int slot) : Slot_(slot) {}

    // `missing`: why the module's newest kadr was not measured; none: it was. Returns what is to be told now, or an
    // empty text.
    std::string Observe(std::optional<GapReason> missing, Clock::time_point now);

private:
    bool MayTell(Clock::time_point now);
    std::string TellSilence(GapReason reason);
    std::string TellReturn(Clock::time_point now);

    int Slot_;
    std::optional<Clock::time_point> Since_;  // of the silence that lasts
    std::optional<GapReason> Told_;           // of this silence
    int Untold_ = 0;                          // silences that were not told, since the last one that was
    Clock::time_point Spent_;                 // up to here the messages that are allowed have been used
};

}  // namespace corvane::recorder
