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
std::string GapLine(const RecordingTask& task, const Gap& gap) {
    const TimeColumn times(task.Rate);
    return fmt::format("not measured: module {}, slot {}, from {} to {}, {:.6g} s, {}", gap.Module,
                       task.SlotOf(gap.Module), times.Text(gap.First), times.Text(gap.First + gap.Kadrs - 1),
                       static_cast<double>(gap.Kadrs) / task.Rate, ReasonText(gap.Reason));
}

std::string UnfittedLine(const Verdict& verdict) {
    return fmt::format("not measured: {} of the channels, without mezzanine", verdict.Unfitted);
}

const char* WhereGapsAre(FileFormat format) {
    if (format == FileFormat::Npy) return "in the .json file";
    return format == FileFormat::Influx ? "as points of ltr27_gaps" : "at the end of the file";
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
        lines.push_back(fmt::format("not measured: {} kadrs ({:.6g} s) of the module in slot {}, in {} gap{}", kadrs,
                                    static_cast<double>(kadrs) / task.Rate, module.Slot, gaps, gaps == 1 ? "" : "s"));
    }
    return lines;
}

}  // namespace

std::FILE* MessageStream(const Options& options) {
    return options.OutputPath == StandardOutput ? stderr : stdout;
}

std::vector<std::string> Remarks(const RecordingTask& task, const Verdict& verdict) {
    std::vector<std::string> remarks;
    for (const Gap& gap : verdict.Gaps) remarks.push_back(GapLine(task, gap));
    if (!verdict.Gaps.empty()) {
        remarks.push_back("note: after a gap the samples of its module can be late by as much as the gap is long");
    }
    if (verdict.Unfitted > 0) remarks.push_back(UnfittedLine(verdict));
    remarks.insert(remarks.end(), verdict.Doubts.begin(), verdict.Doubts.end());
    if (verdict.HowItEnded != End::Complete) remarks.push_back(verdict.Outcome());
    return remarks;
}

void WarnOfVerdict(const Options& options, const RecordingTask& task, const Verdict& verdict, Progress& progress) {
    for (const std::string& total : GapTotals(task, verdict)) progress.Warn("Warning: " + total);
    for (const std::string& doubt : verdict.Doubts) progress.Warn("Warning: " + doubt);
    // The summary says how it ended; without it, this does.
    if (verdict.HowItEnded != End::Complete && options.Quiet) progress.Warn("Warning: " + verdict.Outcome());
}

void WriteSummary(const Options& options, const std::string& files, const RecordingTask& task, const Verdict& verdict) {
    if (options.Quiet) return;
    std::string text = fmt::format("{}: {} of {} at {:.6g} Hz ({:.6g} s), {}\n", files, Counted(verdict.Kadrs, "kadr"),
                                   Counted(static_cast<int64_t>(task.Channels.size()), "channel"), task.Rate,
                                   static_cast<double>(verdict.Kadrs) / task.Rate, verdict.Outcome());
    for (const Gap& gap : std::span(verdict.Gaps).first(std::min(GapsShown, verdict.Gaps.size()))) {
        text += fmt::format("  {}\n", GapLine(task, gap));
    }
    if (verdict.Gaps.size() > GapsShown) {
        text += fmt::format("  and {}, listed {}\n",
                            Counted(static_cast<int64_t>(verdict.Gaps.size() - GapsShown), "more gap"),
                            WhereGapsAre(options.Format));
    }
    if (!options.PlotPath.empty()) text += options.PlotPath + ": plot\n";
    WriteText(MessageStream(options), text);
}

}  // namespace corvane::recorder
