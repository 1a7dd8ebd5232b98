#include "recorder/record_command.h"

#include "recorder/device_summary.h"
#include "recorder/recording_loop.h"
#include "recorder/report.h"

namespace corvane::recorder {

ExitCode Record(const Options& options, HostDevice& device) {
    const RecordingTask task = PrepareTask(options, device);
    const DeviceSummary summary = SummaryOf(device);
    RecordedGaps gaps;
    DataCheck check(task, summary);
    RecordingFiles files(options, task, summary, gaps, check);
    Progress progress(task.WantedKadrs, options.Quiet);
    TellDifferences(options, task, progress);
    if (const std::string advice = UnitsAdvice(UserLanguage(), task.Channels); !advice.empty()) progress.Warn(advice);
    StartRecording(device);
    files.Begin();
    const Verdict verdict = RecordingLoop(options.StallTimeout, device, task, files, gaps, check, progress).Run();
    progress.EndLine();
    WarnOfVerdict(options, task, verdict, progress);
    files.Finish(verdict);
    WriteSummary(options, files.Names(), task, verdict);
    return verdict.Code();
}

}  // namespace corvane::recorder
