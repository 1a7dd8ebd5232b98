// The files that a recording leaves: the CSV, which grows while the data comes, and at the end the plot. Every failure
// throws Failure with ExitCode::Output.
#pragma once

#include <chrono>
#include <cstdint>
#include <ctime>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "recorder/csv_writer.h"
#include "recorder/envelope.h"
#include "recorder/options.h"
#include "recorder/output_file.h"
#include "recorder/recording_task.h"

namespace corvane::recorder {

class RecordingFiles {
public:
    // Creates the files; existing ones are emptied. `task` must outlive this object.
    RecordingFiles(const Options& options, const RecordingTask& task);

    // The recording has started: writes the CSV's header.
    void Begin(const std::string& device);
    // Whole kadrs, one after another.
    void Add(std::span<const int16_t> samples);
    // Writes what waits in memory when the last time is long ago. To be called again and again.
    void WriteWhenDue();
    // Adds the remarks as comment lines, draws the plot and closes the files.
    void Finish(const std::vector<std::string>& remarks);

private:
    using Clock = std::chrono::steady_clock;

    void WritePlot();

    const RecordingTask& Task_;
    CsvWriter Csv_;
    OutputFile CsvFile_;
    std::optional<OutputFile> PlotFile_;
    Envelope Envelope_;
    std::string Device_;
    std::time_t StartTime_ = 0;
    Clock::time_point LastWrite_;
};

}  // namespace corvane::recorder
