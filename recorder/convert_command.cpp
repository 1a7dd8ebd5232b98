#include "recorder/convert_command.h"

#include <fmt/format.h>
#include <algorithm>
#include <cmath>

#include "recorder/console.h"
#include "recorder/csv_writer.h"
#include "recorder/npy_recording.h"
#include "recorder/output_file.h"
#include "recorder/progress.h"
#include "recorder/recorded_gaps.h"
#include "recorder/report.h"
#include "recorder/thinning.h"
#include "recorder/words.h"

namespace corvane::recorder {
namespace {

constexpr int64_t ChunkKadrs = 4096;

// Kadrs of a recording, counted from its start.
struct Range {
    int64_t First = 0;
    int64_t End = 0;
};

Range WantedRange(const Options& options, const NpyRecording& input) {
    const Recording& recording = input.Recording();
    const Range file = {recording.FirstKadr, recording.FirstKadr + input.Kadrs()};
    const auto kadrAt = [&](double seconds) {
        return static_cast<int64_t>(std::ceil(seconds * recording.Task.Rate - 1e-6));
    };
    const Range wanted = {std::max(file.First, kadrAt(options.From)),
                          options.To ? std::min(file.End, kadrAt(*options.To)) : file.End};
    if (wanted.First < wanted.End || (file.First == file.End && options.From == 0)) return wanted;
    const TimeColumn times(recording.Task.Rate);
    throw Failure(ExitCode::Usage, Say("{} has no kadrs of that time: it goes from {} to {} s.", options.InputPath,
                                       times.Text(file.First), times.Text(file.End)));
}

// What the rows are, where they are not all of the file's kadrs.
std::vector<std::string> SelectionLines(const Options& options, const NpyRecording& input, Range range) {
    std::vector<std::string> lines;
    if (range.End - range.First != input.Kadrs()) {
        const TimeColumn times(input.Recording().Task.Rate);
        lines.push_back(
            fmt::format("Selected: from {} to before {} s", times.Text(range.First), times.Text(range.End)));
    }
    if (options.Every > 1) {
        const char* what = options.ThinBy == Thinning::Means    ? "the means of the measured ones of"
                           : options.ThinBy == Thinning::MinMax ? "the lowest and highest of the measured ones of"
                                                                : "the first of";
        lines.push_back(fmt::format("Rows: each {} {} kadrs", what, options.Every));
    }
    return lines;
}

// Returns the number of rows.
int64_t WriteRows(const Options& options, NpyRecording& input, Range range, CsvWriter& writer, OutputFile& output) {
    const std::vector<Channel>& channels = input.Recording().Task.Channels;
    Progress progress(std::max<int64_t>(range.End - range.First, 1), options.Quiet);
    RecordedGaps gaps(range.First);
    Thinner thinner(channels, options.ThinBy, options.Every, range.First);
    std::vector<int16_t> samples(static_cast<size_t>(ChunkKadrs) * channels.size());
    for (int64_t kadr = range.First; kadr < range.End; kadr += ChunkKadrs) {
        if (InterruptRequested()) throw Failure(ExitCode::Interrupted, Say("Interrupted."));
        const int64_t count = std::min(ChunkKadrs, range.End - kadr);
        const auto chunk = std::span(samples).first(static_cast<size_t>(count) * channels.size());
        input.Read(kadr - input.Recording().FirstKadr, chunk);
        TakenKadrs kadrs = {chunk, gaps.Add(count, input.Verdict().Gaps)};
        if (options.KeepFilled) kadrs.Missing = {};
        if (options.Every == 1) {
            writer.AppendRows(output.Buffer(), kadrs);
        } else {
            thinner.AppendRows(output.Buffer(), writer, kadrs);
        }
        output.WriteWhenLarge();
        progress.Show(kadr + count - range.First);
    }
    thinner.AppendRest(output.Buffer(), writer);
    return options.Every == 1 ? range.End - range.First : thinner.Rows();
}

}  // namespace

ExitCode Convert(const Options& options) {
    NpyRecording input(options.InputPath);
    const Recording& recording = input.Recording();
    const RecordingTask& task = recording.Task;
    const Range range = WantedRange(options, input);
    Verdict verdict = input.Verdict();
    verdict.Gaps = GapsWithin(verdict.Gaps, range.First, range.End);

    OutputFile output(options.OutputPath);
    WatchInterrupt();
    CsvWriter writer(ThinnedColumns(task.Channels, options.ThinBy), task.Rate, options.Csv, range.First);
    std::vector<std::string> head = recording.Lines();
    for (const std::string& line : SelectionLines(options, input, range)) head.push_back(line);
    writer.AppendHeader(output.Buffer(), head);
    const int64_t rows = WriteRows(options, input, range, writer, output);
    for (const std::string& remark : Remarks(task, verdict)) output.Buffer() += "# " + remark + '\n';
    output.Complete();

    if (!options.Quiet) {
        WriteText(MessageStream(options),
                  Say("{}: {} of {} from {}; the recording: {}", output.Path(), Counted(rows, RowNoun),
                      Counted(static_cast<int64_t>(task.Channels.size()), ChannelNoun), options.InputPath,
                      verdict.Outcome(UserLanguage())) +
                      '\n');
    }
    return ExitCode::Success;
}

}  // namespace corvane::recorder
