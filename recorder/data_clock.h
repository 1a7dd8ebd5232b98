// Compares the kadrs that arrived with the clock. The driver tells which kadrs it filled in, but not how long it waited
// for them: where it fills in more or fewer than time has passed, the times of all later kadrs are shifted.
#pragma once

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdint>

namespace corvane::recorder {

class DataClock {
public:
    using Clock = std::chrono::steady_clock;

    // `timed`: a clock paces the data, as that of a real module does. A simulated one may hurry.
    DataClock(double rate, bool timed) : Rate_(rate), Timed_(timed) {}

    // `kadrs`: all that arrived since the start, read or not. Silence alone changes nothing: what comes after it shows
    // whether any were lost.
    void Observe(int64_t kadrs, Clock::time_point now) {
        // After a pause of the whole machine the driver needs a moment to catch up, too.
        const Clock::duration pause = now - LastLook_;
        if (pause > std::chrono::milliseconds(250)) JudgeFrom_ = now + pause;
        LastLook_ = now;
        if (kadrs == LastKadrs_) return;
        if (LastKadrs_ == 0) {
            FirstKadrs_ = kadrs;
            First_ = now;
        }
        LastKadrs_ = kadrs;
        const double elapsed = std::chrono::duration<double>(now - First_).count();
        const double lead = static_cast<double>(kadrs - FirstKadrs_) / Rate_ - elapsed;
        if (lead > 0 && !Timed_) return;
        // 1 s covers blocks, networks and busy machines, 0.1 % the difference of two quartz clocks.
        if (now < JudgeFrom_ || std::abs(lead) <= std::max(1.0, elapsed * 0.001)) return;
        if (std::abs(lead) > std::abs(WorstLead_)) WorstLead_ = lead;
    }

    // Seconds by which the data was ahead of the clock at its worst; negative: it was late; 0: never in doubt.
    double WorstLead() const { return WorstLead_; }
    bool Doubtful() const { return WorstLead_ != 0; }

private:
    double Rate_;  // Hz
    bool Timed_;
    int64_t LastKadrs_ = 0;
    int64_t FirstKadrs_ = 0;  // kadrs at the first look that found some
    Clock::time_point First_;
    Clock::time_point LastLook_ = Clock::now();
    Clock::time_point JudgeFrom_;
    double WorstLead_ = 0;  // s
};

}  // namespace corvane::recorder
