// The files that a recording leaves: the CSV, which grows while the data comes, and at the end the plot. Every failure
// throws Failure with ExitCode::Output.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "recorder/csv_writer.h"
#include "recorder/device_summary.h"
#include "recorder/envelope.h"
#include "recorder/options.h"
#include "recorder/output_file.h"
#include "recorder/recording_task.h"
#include "recorder/taken_kadrs.h"

namespace corvane::recorder {

class RecordingFiles {
public:
    // Both references must outlive this object.
    RecordingFiles(const Options& options, const RecordingTask& task, const DeviceSummary& summary);

    // The recording has started: writes the CSV's header.
    void Begin();
    void Add(TakenKadrs kadrs);
    // Writes what waits in memory when the last time is long ago. To be called again and again.
    void WriteWhenDue();
    // Adds the remarks as comment lines, draws the plot with the gaps shaded and gives the files their names.
    void Finish(const std::vector<std::string>& remarks, std::span<const Gap> gaps);

private:
    using Clock = std::chrono::steady_clock;

    void WritePlot(std::span<const Gap> gaps);

    std::vector<std::string> Head() const;

    bool KeepFilled_;
    const RecordingTask& Task_;
    const DeviceSummary& Summary_;
    CsvWriter Csv_;
    OutputFile CsvFile_;
    std::optional<OutputFile> PlotFile_;
    Envelope Envelope_;
    std::chrono::system_clock::time_point StartTime_;
    Clock::time_point LastWrite_;
};

}  // namespace corvane::recorder
