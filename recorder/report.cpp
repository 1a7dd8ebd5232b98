#include "recorder/report.h"

#include <fmt/format.h>
#include <algorithm>
#include <span>

#include "recorder/console.h"
#include "recorder/csv_writer.h"
#include "recorder/output_file.h"
#include "recorder/words.h"

namespace corvane::recorder {

namespace {

constexpr size_t GapsShown = 10;

// The times are those of the gap's first and last row.
std::string GapLine(Language language, const RecordingTask& task, const Gap& gap) {
    const TimeColumn times(task.Rate);
    const std::string reason = ReasonText(gap.Reason);
    return SayIn(language, "not measured: module {}, slot {}, from {} to {}, {:.6g} s, {}", gap.Module,
                 task.SlotOf(gap.Module), times.Text(gap.First), times.Text(gap.First + gap.Kadrs - 1),
                 static_cast<double>(gap.Kadrs) / task.Rate,
                 language == Language::English ? reason : Translated(reason));
}

std::string UnfittedLine(const Verdict& verdict) {
    return fmt::format("not measured: {} of the channels, without mezzanine", verdict.Unfitted);
}

// Those of a summary that has no room for them.
std::string MoreGaps(const std::string& gaps, FileFormat format) {
    if (format == FileFormat::Npy) return Say("and {}, listed in the .json file", gaps);
    if (format == FileFormat::Influx) return Say("and {}, listed as points of ltr27_gaps", gaps);
    return Say("and {}, listed at the end of the file", gaps);
}

// A line for each module with gaps.
std::vector<std::string> GapTotals(const RecordingTask& task, const Verdict& verdict) {
    std::vector<std::string> lines;
    for (const RecordedModule& module : task.Modules) {
        int64_t gaps = 0;
        int64_t kadrs = 0;
        for (const Gap& gap : verdict.Gaps) {
            if (gap.Module != module.Index) continue;
            gaps++;
            kadrs += gap.Kadrs;
        }
        if (gaps == 0) continue;
        lines.push_back(Say("not measured: {} ({:.6g} s) of the module in slot {}, in {}", Counted(kadrs, KadrNoun),
                            static_cast<double>(kadrs) / task.Rate, module.Slot, Counted(gaps, GapNoun)));
    }
    return lines;
}

}  // namespace

std::FILE* MessageStream(const Options& options) {
    return options.OutputPath == StandardOutput ? stderr : stdout;
}

std::vector<std::string> Remarks(const RecordingTask& task, const Verdict& verdict) {
    std::vector<std::string> remarks;
    for (const Gap& gap : verdict.Gaps) remarks.push_back(GapLine(Language::English, task, gap));
    if (!verdict.Gaps.empty()) {
        remarks.push_back("note: after a gap the samples of its module can be late by as much as the gap is long");
    }
    if (verdict.Unfitted > 0) remarks.push_back(UnfittedLine(verdict));
    remarks.insert(remarks.end(), verdict.Doubts.begin(), verdict.Doubts.end());
    if (verdict.HowItEnded != End::Complete) remarks.push_back(verdict.Outcome(Language::English));
    return remarks;
}

void WarnOfVerdict(const Options& options, const RecordingTask& task, const Verdict& verdict, Progress& progress) {
    for (const std::string& total : GapTotals(task, verdict)) progress.Warn(Say("Warning: {}", total));
    for (const std::string& doubt : verdict.Doubts) progress.Warn(Say("Warning: {}", Translated(doubt)));
    // The summary says how it ended; without it, this does.
    if (verdict.HowItEnded != End::Complete && options.Quiet) {
        progress.Warn(Say("Warning: {}", verdict.Outcome(UserLanguage())));
    }
}

void WriteSummary(const Options& options, const std::string& files, const RecordingTask& task, const Verdict& verdict) {
    if (options.Quiet) return;
    std::string text = Say("{}: {} of {} at {:.6g} Hz ({:.6g} s), {}", files, Counted(verdict.Kadrs, KadrNoun),
                           Counted(static_cast<int64_t>(task.Channels.size()), ChannelNoun), task.Rate,
                           static_cast<double>(verdict.Kadrs) / task.Rate, verdict.Outcome(UserLanguage())) +
                       '\n';
    for (const Gap& gap : std::span(verdict.Gaps).first(std::min(GapsShown, verdict.Gaps.size()))) {
        text += fmt::format("  {}\n", GapLine(UserLanguage(), task, gap));
    }
    if (verdict.Gaps.size() > GapsShown) {
        const std::string gaps = Counted(static_cast<int64_t>(verdict.Gaps.size() - GapsShown), MoreGapsNoun);
        text += fmt::format("  {}\n", MoreGaps(gaps, options.Format));
    }
    if (!options.PlotPath.empty()) text += Say("{}: plot", options.PlotPath) + '\n';
    WriteText(MessageStream(options), text);
}

}  // namespace corvane::recorder
