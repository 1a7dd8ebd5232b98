// The loop that takes the kadrs of a started recording from the driver until it has all or none are measured any more.
#pragma once

#include <chrono>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "recorder/data_check.h"
#include "recorder/host_device.h"
#include "recorder/progress.h"
#include "recorder/recorded_gaps.h"
#include "recorder/recording_files.h"
#include "recorder/recording_task.h"
#include "recorder/silence_watch.h"
#include "recorder/verdict.h"

namespace corvane::recorder {

// Uses what it is given by reference; all of that must outlive it.
class RecordingLoop {
public:
    // `stallTimeout`: seconds without measured data after which it gives up; 0: never.
    RecordingLoop(double stallTimeout, HostDevice& device, const RecordingTask& task, RecordingFiles& files,
                  RecordedGaps& gaps, DataCheck& check, Progress& progress);

    // Takes kadrs until all are there, the user interrupts, or nothing is measured any more; then stops the recording
    // and takes what the driver still has.
    Verdict Run();

private:
    using Clock = std::chrono::steady_clock;

    End TakeUntilEnd();
    bool Take();
    bool SomeMeasured(std::span<const uint8_t> missing) const;
    void WatchModules(Clock::time_point now);
    bool Stalled();
    void WarnOnDoubt();
    std::string ReasonOf(End end) const;

    double StallTimeout_;  // s
    HostDevice& Device_;
    const RecordingTask& Task_;
    RecordingFiles& Files_;
    RecordedGaps& Gaps_;
    DataCheck& Check_;
    Progress& Progress_;
    std::vector<int16_t> Samples_;
    std::vector<SilenceWatch> Watches_;              // one for each recorded module
    int64_t Kadrs_ = 0;                              // taken
    Clock::time_point LastMeasured_ = Clock::now();  // or the start
    bool StallWarned_ = false;
    bool DoubtWarned_ = false;
};

}  // namespace corvane::recorder
