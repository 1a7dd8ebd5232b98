// What a recording is asked to bring: which channels, at which rate, how many kadrs.
#pragma once

#include <cstdint>
#include <vector>

#include "recorder/channel.h"
#include "recorder/host_device.h"
#include "recorder/options.h"
#include "recorder/progress.h"

namespace corvane::recorder {

// A module whose channels are recorded.
struct RecordedModule {
    int32_t Index = 0;  // among the opened ones
    int Slot = 0;       // in the crate; 0: unknown
};

struct RecordingTask {
    std::vector<Channel> Channels;
    std::vector<RecordedModule> Modules;
    double Rate = 0;  // Hz
    int64_t WantedKadrs = 0;

    int SlotOf(int32_t module) const;
    int Unfitted() const;  // channels without a mezzanine, where nothing can be measured
};

// Gives the opened device the channels and the rate that the user asked for, and returns them as it took them. Throws
// Failure when there is nothing to record or a channel does not exist.
RecordingTask PrepareTask(const Options& options, HostDevice& device);

// Starts the recording that was prepared, with a ring of a minute at the highest rate; from here on Ctrl+C is watched.
// Throws Failure.
void StartRecording(HostDevice& device);

// Tells the user where the task differs from what was asked, or will bring nothing.
void TellDifferences(const Options& options, const RecordingTask& task, Progress& progress);

}  // namespace corvane::recorder
