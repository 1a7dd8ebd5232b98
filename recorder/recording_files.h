// The files that a recording leaves: those with its kadrs, one after another where it is split, which grow while the
// data comes, and at the end the plot. Every failure throws Failure with ExitCode::Output.
#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "recorder/data_check.h"
#include "recorder/data_file.h"
#include "recorder/envelope.h"
#include "recorder/options.h"
#include "recorder/output_file.h"
#include "recorder/recorded_gaps.h"
#include "recorder/recording.h"
#include "recorder/taken_kadrs.h"
#include "recorder/verdict.h"

namespace corvane::recorder {

class RecordingFiles {
public:
    // `gaps` and `check` tell what is known of the kadrs added so far; both must outlive this object.
    RecordingFiles(const Options& options, const RecordingTask& task, const DeviceSummary& summary,
                   const RecordedGaps& gaps, const DataCheck& check);

    // The recording has started: writes the head of its first file.
    void Begin();
    void Add(TakenKadrs kadrs);
    // Writes what waits in memory when the last time is long ago. To be called again and again.
    void WriteWhenDue();
    // Adds how it ended, draws the plot with the gaps shaded and gives the files their names.
    void Finish(const Verdict& verdict);

    // For the user: what holds the kadrs.
    std::string Names() const;

private:
    using Clock = std::chrono::steady_clock;

    std::unique_ptr<DataFile> Open(int part) const;
    int64_t Room() const;
    void NextPart();
    Verdict VerdictSoFar(End end) const;
    Verdict OfThisFile(Verdict verdict) const;
    void WritePlot(std::span<const Gap> gaps);

    const Options& Options_;
    const RecordedGaps& Gaps_;
    const DataCheck& Check_;
    Recording Recording_;
    std::unique_ptr<DataFile> File_;
    std::optional<OutputFile> PlotFile_;
    Envelope Envelope_;
    int64_t Kadrs_ = 0;  // added, to all files
    Clock::time_point LastWrite_;
};

}  // namespace corvane::recorder
