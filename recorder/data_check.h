// Looks at a running recording for signs that kadrs were lost or came at a wrong time.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "recorder/data_clock.h"
#include "recorder/device_summary.h"
#include "recorder/recording_task.h"

namespace corvane::recorder {

class DataCheck {
public:
    DataCheck(const RecordingTask& task, const DeviceSummary& device) : DataClock_(task.Rate, !device.Simulated()) {}

    // `takenKadrs` have been taken so far, `unreadKadrs` more wait in the driver's ring of `ringKadrs`.
    void Observe(int64_t takenKadrs, int32_t unreadKadrs, int32_t ringKadrs, DataClock::Clock::time_point now);

    // A line for each reason to doubt, in English as files have it.
    std::vector<std::string> Doubts() const;

private:
    DataClock DataClock_;
    bool RingFull_ = false;
};

}  // namespace corvane::recorder
