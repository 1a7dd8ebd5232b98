#include "recorder/recording_files.h"

#include <fmt/format.h>

#include "base/utf8.h"
#include "recorder/svg_plot.h"
#include "recorder/words.h"

namespace corvane::recorder {
namespace {

constexpr auto WriteInterval = std::chrono::seconds(2);  // no more is lost when the power fails

// The lines again, as few as have room below a plot.
std::vector<std::string> Paragraph(const std::vector<std::string>& lines) {
    constexpr size_t Width = 150;  // characters
    std::vector<std::string> paragraph;
    for (const std::string& line : lines) {
        if (paragraph.empty() || CharacterCount(paragraph.back()) + CharacterCount(line) > Width) {
            paragraph.push_back(line);
        } else {
            paragraph.back() += "; " + line;
        }
    }
    return paragraph;
}

}  // namespace

RecordingFiles::RecordingFiles(const Options& options, const RecordingTask& task, const DeviceSummary& summary)
    : KeepFilled_(options.KeepFilled),
      Task_(task),
      Summary_(summary),
      Csv_(task.Channels, task.Rate),
      CsvFile_(options.OutputPath),
      Envelope_(MissingBits(task.Channels)) {
    if (!options.PlotPath.empty()) PlotFile_.emplace(options.PlotPath, &CsvFile_);
}

void RecordingFiles::Begin() {
    StartTime_ = std::chrono::system_clock::now();
    Csv_.AppendHeader(CsvFile_.Buffer(), Head());
    CsvFile_.Write();
    LastWrite_ = Clock::now();
}

std::vector<std::string> RecordingFiles::Head() const {
    std::vector<std::string> head = {"Device: " + Summary_.Device};
    head.insert(head.end(), Summary_.Lines.begin(), Summary_.Lines.end());
    head.push_back("Start: " + Iso8601(StartTime_));
    head.push_back(fmt::format("Rate: {:.6g} Hz", Task_.Rate));
    head.push_back(fmt::format("Channels: {}", Task_.Channels.size()));
    head.push_back(fmt::format("Kadrs wanted: {}", Task_.WantedKadrs));
    if (const std::string advice = UnitsAdvice(Task_.Channels); !advice.empty()) head.push_back("Note: " + advice);
    return head;
}

void RecordingFiles::Add(TakenKadrs kadrs) {
    if (KeepFilled_) kadrs.Missing = {};
    Csv_.AppendRows(CsvFile_.Buffer(), kadrs);
    Envelope_.Add(kadrs);
    CsvFile_.WriteWhenLarge();
}

// Where the disk is slow, the driver's ring waits: it holds a minute.
void RecordingFiles::WriteWhenDue() {
    if (Clock::now() - LastWrite_ < WriteInterval) return;
    CsvFile_.WriteToDisk();
    LastWrite_ = Clock::now();
}

void RecordingFiles::Finish(const std::vector<std::string>& remarks, std::span<const Gap> gaps) {
    for (const std::string& remark : remarks) CsvFile_.Buffer() += fmt::format("# {}\n", remark);
    CsvFile_.Complete();
    if (PlotFile_) WritePlot(gaps);
}

void RecordingFiles::WritePlot(std::span<const Gap> gaps) {
    const std::string details =
        fmt::format("{}, {:.6g} Hz, {}", Iso8601(StartTime_), Task_.Rate, Counted(Envelope_.Kadrs(), "kadr"));
    const std::vector<std::string> notes = Paragraph(Summary_.Lines);
    PlotFile_->Buffer() = RenderPlot({.Title = Summary_.Device,
                                      .Details = details,
                                      .Rate = Task_.Rate,
                                      .Channels = Task_.Channels,
                                      .Data = Envelope_,
                                      .Modules = Task_.Modules,
                                      .Gaps = gaps,
                                      .Notes = notes});
    PlotFile_->Complete();
}

}  // namespace corvane::recorder
