#include "recorder/report_command.h"

#include "recorder/console.h"
#include "recorder/file_names.h"
#include "recorder/file_system.h"
#include "recorder/output_file.h"
#include "recorder/page/csv_source.h"
#include "recorder/page/npy_source.h"
#include "recorder/page/page_text.h"
#include "recorder/progress.h"
#include "recorder/report.h"
#include "recorder/words.h"

namespace corvane::recorder {
namespace {

constexpr int64_t PackedSamplesMax = 40'000'000;  // a browser has memory for so many

void RefuseInputAsOutput(const Options& options) {
    for (const std::string& input : {options.InputPath, DescriptionPath(options.InputPath)}) {
        if (!SameFile(options.OutputPath, input)) continue;
        throw Failure(ExitCode::Usage,
                      Say("--output {} is the recording itself: give the page another name.", options.OutputPath));
    }
}

// Reading ahead on another thread gains nothing: systems do that by themselves, and a block that was just read is still
// near the processor.
template <class Source>
void ReadAll(Source& source, Collected& collected, Progress& progress) {
    for (KadrBlock<typename Source::Sample> block; source.Read(block); progress.Show(collected.Kadrs())) {
        if (InterruptRequested()) throw Failure(ExitCode::Interrupted, Say("Interrupted."));
        collected.Add(block);
    }
}

template <class Source>
ExitCode MakePage(const Options& options, Source&& source, int64_t wantedKadrs, int64_t samplesMax) {
    OutputFile output(options.OutputPath);
    WatchInterrupt();
    Collected collected(source.Plan(), DataRoom(), samplesMax);
    {
        Progress progress(wantedKadrs, options.Quiet);
        ReadAll(source, collected, progress);
    }
    const PageSubject subject = source.Subject();
    const int64_t binKadrs = WritePage(output, subject, collected, UserLanguage());
    output.Complete();
    if (options.Quiet) return ExitCode::Success;
    const std::string resolution = binKadrs == 1 && subject.Step > 1 ? Say("every row")
                                   : binKadrs == 1
                                       ? Say("every sample")
                                       : Say("the lowest and highest of each {} kadrs", binKadrs * subject.Step);
    WriteText(MessageStream(options), Say("{}: {} of {} from {}, {}; the recording: {}", output.Path(),
                                          Counted(collected.Kadrs(), subject.Step == 1 ? KadrNoun : RowNoun),
                                          Counted(static_cast<int64_t>(subject.Channels.size()), ChannelNoun),
                                          options.InputPath, resolution, subject.Ending.Outcome(UserLanguage())) +
                                          '\n');
    return ExitCode::Success;
}

}  // namespace

ExitCode MakeReport(const Options& options) {
    RefuseInputAsOutput(options);
    if (!NpyRecording::IsOne(options.InputPath)) {
        return MakePage(options, CsvSource(options.InputPath), UntilInterrupted, PackedSamplesMax);
    }
    NpySource source(options.InputPath);
    const bool few = source.Kadrs() * static_cast<int64_t>(source.Plan().Count) <= PackedSamplesMax;
    return MakePage(options, source, std::max<int64_t>(source.Kadrs(), 1), few ? PackedSamplesMax : 0);
}

}  // namespace corvane::recorder
