// Looks at the data of a running recording for signs that the driver lost some or filled some in.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "recorder/data_clock.h"
#include "recorder/recording_task.h"
#include "recorder/repeat_check.h"

namespace corvane::recorder {

class DataCheck {
public:
    explicit DataCheck(const RecordingTask& task);

    // `takenKadrs` have been taken so far, `unreadKadrs` more wait in the driver's ring of `ringKadrs`.
    void Observe(int64_t takenKadrs, int32_t unreadKadrs, int32_t ringKadrs, DataClock::Clock::time_point now);
    // Whole kadrs, one after another, from the first of the recording on.
    void Add(std::span<const int16_t> samples) { RepeatCheck_.Add(samples); }

    bool Doubtful() const;
    // A line for each reason to doubt.
    std::vector<std::string> Doubts() const;

private:
    double Rate_;  // Hz
    DataClock DataClock_;
    RepeatCheck RepeatCheck_;
    bool RingFull_ = false;
};

}  // namespace corvane::recorder
