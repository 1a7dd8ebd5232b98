#include "recorder/recording_files.h"

#include <fmt/format.h>

#include "recorder/svg_plot.h"

namespace corvane::recorder {
namespace {

constexpr auto WriteInterval = std::chrono::seconds(2);  // no more is lost when the power fails

}  // namespace

RecordingFiles::RecordingFiles(const Options& options, const RecordingTask& task)
    : KeepFilled_(options.KeepFilled),
      Task_(task),
      Csv_(task.Channels, task.Rate),
      CsvFile_(options.OutputPath),
      Envelope_(MissingBits(task.Channels)) {
    if (!options.PlotPath.empty()) PlotFile_.emplace(options.PlotPath);
}

void RecordingFiles::Begin(const std::string& device) {
    Device_ = device;
    StartTime_ = std::time(nullptr);
    Csv_.AppendHeader(CsvFile_.Buffer(), Device_, StartTime_, Task_.WantedKadrs);
    CsvFile_.Write();
    LastWrite_ = Clock::now();
}

void RecordingFiles::Add(TakenKadrs kadrs) {
    if (KeepFilled_) kadrs.Missing = {};
    Csv_.AppendRows(CsvFile_.Buffer(), kadrs);
    Envelope_.Add(kadrs);
    CsvFile_.WriteWhenLarge();
}

void RecordingFiles::WriteWhenDue() {
    if (Clock::now() - LastWrite_ < WriteInterval) return;
    CsvFile_.Write();
    LastWrite_ = Clock::now();
}

void RecordingFiles::Finish(const std::vector<std::string>& remarks, std::span<const Gap> gaps) {
    for (const std::string& remark : remarks) CsvFile_.Buffer() += fmt::format("# {}\n", remark);
    CsvFile_.Close();
    if (PlotFile_) WritePlot(gaps);
}

void RecordingFiles::WritePlot(std::span<const Gap> gaps) {
    const std::string details =
        fmt::format("{}, {:.6g} Hz, {} kadrs", Iso8601(StartTime_), Task_.Rate, Envelope_.Kadrs());
    PlotFile_->Buffer() = RenderPlot({Device_, details, Task_.Rate, Task_.Channels, Envelope_, Task_.Modules, gaps});
    PlotFile_->Close();
}

}  // namespace corvane::recorder
