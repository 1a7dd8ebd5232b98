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
#include "recorder/taken_kadrs.h"

namespace corvane::recorder {

class RecordingFiles {
public:
    // Creates the files; existing ones are emptied. `task` must outlive this object.
    RecordingFiles(const Options& options, const RecordingTask& task);

    // The recording has started: writes the CSV's header.
    void Begin(const std::string& device);
    void Add(TakenKadrs kadrs);
    // Writes what waits in memory when the last time is long ago. To be called again and again.
    void WriteWhenDue();
    // Adds the remarks as comment lines, draws the plot with the gaps shaded and closes the files.
    void Finish(const std::vector<std::string>& remarks, std::span<const Gap> gaps);

private:
    using Clock = std::chrono::steady_clock;

    void WritePlot(std::span<const Gap> gaps);

    bool KeepFilled_;
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
