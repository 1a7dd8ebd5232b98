// What a recording says of itself besides its samples, in whatever form.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

#include "recorder/device_summary.h"
#include "recorder/recording_task.h"

namespace corvane::recorder {

struct Recording {
    DeviceSummary Device;
    RecordingTask Task;
    std::string Start;  // local time, in ISO 8601
    // The same time. Not known of a recording that was read back.
    std::chrono::sys_time<std::chrono::milliseconds> StartTime{};
    std::string Note;       // advice for the user; empty: none
    int Part = 0;           // 1 is the first file of a recording that is split into several; 0: it is not
    int64_t FirstKadr = 0;  // the number of this file's first kadr, counted from the recording's start

    // "What: ...", for the head of a file.
    std::vector<std::string> Lines() const;
};

}  // namespace corvane::recorder
