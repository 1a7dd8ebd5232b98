#include "recorder/report.h"

#include <fmt/format.h>

#include "recorder/console.h"
#include "recorder/output_file.h"
#include "recorder/words.h"

namespace corvane::recorder {

namespace {

// Standard output belongs to the data when that goes there.
std::FILE* MessageStream(const Options& options) {
    return options.OutputPath == StandardOutput ? stderr : stdout;
}

}  // namespace

std::vector<std::string> Remarks(const Verdict& verdict) {
    std::vector<std::string> remarks = verdict.Doubts;
    if (verdict.HowItEnded != End::Complete) remarks.push_back(verdict.Outcome());
    return remarks;
}

void WarnOfVerdict(const Options& options, const Verdict& verdict, Progress& progress) {
    for (const std::string& doubt : verdict.Doubts) progress.Warn("Warning: " + doubt);
    // The summary says how it ended; without it, this does.
    if (verdict.HowItEnded != End::Complete && options.Quiet) progress.Warn("Warning: " + verdict.Outcome());
}

void WriteSummary(const Options& options, const RecordingTask& task, const Verdict& verdict) {
    if (options.Quiet) return;
    WriteText(
        MessageStream(options),
        fmt::format("{}: {} of {} at {:.6g} Hz ({:.6g} s), {}\n", options.OutputPath, Counted(verdict.Kadrs, "kadr"),
                    Counted(static_cast<int64_t>(task.Channels.size()), "channel"), task.Rate,
                    static_cast<double>(verdict.Kadrs) / task.Rate, verdict.Outcome()));
    if (!options.PlotPath.empty()) WriteText(MessageStream(options), options.PlotPath + ": plot\n");
}

}  // namespace corvane::recorder
