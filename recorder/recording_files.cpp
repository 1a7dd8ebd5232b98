#include "recorder/recording_files.h"

#include <algorithm>
#include <cmath>

#include "base/utf8.h"
#include "recorder/csv_file.h"
#include "recorder/file_names.h"
#include "recorder/influx_file.h"
#include "recorder/npy_file.h"
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

RecordingFiles::RecordingFiles(const Options& options, const RecordingTask& task, const DeviceSummary& summary,
                               const RecordedGaps& gaps, const DataCheck& check)
    : Options_(options),
      Gaps_(gaps),
      Check_(check),
      Recording_{summary, task, "", {}, UnitsAdvice(Language::English, task.Channels), options.Split ? 1 : 0, 0},
      File_(Open(Recording_.Part)),
      Envelope_(MissingBits(task.Channels)) {
    if (!options.PlotPath.empty()) PlotFile_.emplace(options.PlotPath, "", &File_->Output());
}

std::unique_ptr<DataFile> RecordingFiles::Open(int part) const {
    const std::string path = part == 0 ? Options_.OutputPath : PartName(Options_.OutputPath, part);
    switch (Options_.Format) {
        case FileFormat::Npy:
            return std::make_unique<NpyFile>(path);
        case FileFormat::Influx:
            return std::make_unique<InfluxFile>(path);
        case FileFormat::Csv:
            break;
    }
    return std::make_unique<CsvFile>(path, Options_.Csv);
}

void RecordingFiles::Begin() {
    Recording_.StartTime = std::chrono::floor<std::chrono::milliseconds>(std::chrono::system_clock::now());
    Recording_.Start = Iso8601(Recording_.StartTime);
    File_->Begin(Recording_);
    LastWrite_ = Clock::now();
}

void RecordingFiles::Add(TakenKadrs kadrs) {
    if (Options_.KeepFilled) kadrs.Missing = {};
    if (PlotFile_) Envelope_.Add(kadrs);
    const size_t channels = Recording_.Task.Channels.size();
    const size_t count = kadrs.Samples.size() / channels;
    for (size_t first = 0; first < count;) {
        const auto fitting = static_cast<size_t>(std::min<int64_t>(Room(), static_cast<int64_t>(count - first)));
        if (fitting == 0) {
            NextPart();
            continue;
        }
        File_->Add(kadrs.Part(first, fitting, channels));
        Kadrs_ += static_cast<int64_t>(fitting);
        first += fitting;
    }
}

// Kadrs that the present file still takes; at least one comes into each.
int64_t RecordingFiles::Room() const {
    if (!Options_.Split) return INT64_MAX;
    const int64_t inFile = Kadrs_ - Recording_.FirstKadr;
    const int64_t room = Options_.Split->Bytes > 0
                             ? File_->Room(Options_.Split->Bytes)
                             : std::llround(Options_.Split->Seconds * Recording_.Task.Rate) - inFile;
    return std::max<int64_t>(room, inFile == 0 ? 1 : 0);
}

void RecordingFiles::NextPart() {
    std::unique_ptr<DataFile> next = Open(Recording_.Part + 1);
    Verdict verdict = OfThisFile(VerdictSoFar(End::Continued));
    verdict.Reason = next->Output().Path();
    File_->Finish(verdict);
    File_ = std::move(next);
    Recording_.Part++;
    Recording_.FirstKadr = Kadrs_;
    File_->Begin(Recording_);
}

// Where the disk is slow, the driver's ring waits: it holds a minute.
void RecordingFiles::WriteWhenDue() {
    if (Clock::now() - LastWrite_ < WriteInterval) return;
    File_->Flush(OfThisFile(VerdictSoFar(End::Unknown)));
    LastWrite_ = Clock::now();
}

void RecordingFiles::Finish(const Verdict& verdict) {
    File_->Finish(OfThisFile(verdict));
    if (PlotFile_) WritePlot(verdict.Gaps);
}

std::string RecordingFiles::Names() const {
    if (Recording_.Part <= 1) return File_->Output().Path();
    return Say("{} to {}", PartName(Options_.OutputPath, 1), File_->Output().Path());
}

Verdict RecordingFiles::VerdictSoFar(End end) const {
    return {end, "", Kadrs_, Recording_.Task.WantedKadrs, Check_.Doubts(), Gaps_.Gaps(), Recording_.Task.Unfitted()};
}

// Without the gaps that lie in other files.
Verdict RecordingFiles::OfThisFile(Verdict verdict) const {
    verdict.Gaps = GapsWithin(verdict.Gaps, Recording_.FirstKadr, Kadrs_);
    return verdict;
}

void RecordingFiles::WritePlot(std::span<const Gap> gaps) {
    const std::string details =
        Say("{}, {:.6g} Hz, {}", Recording_.Start, Recording_.Task.Rate, Counted(Envelope_.Kadrs(), KadrNoun));
    DeviceSummary device = Recording_.Device;
    for (Library& library : device.Libraries) library.File.clear();  // a long path, which only its own machine minds
    const std::vector<std::string> notes = Paragraph(device.Lines(UserLanguage()));
    PlotFile_->Buffer() = RenderPlot({.Title = Recording_.Device.Device(UserLanguage()),
                                      .Details = details,
                                      .Rate = Recording_.Task.Rate,
                                      .Channels = Recording_.Task.Channels,
                                      .Data = Envelope_,
                                      .Modules = Recording_.Task.Modules,
                                      .Gaps = gaps,
                                      .Notes = notes});
    PlotFile_->Complete();
}

}  // namespace corvane::recorder
