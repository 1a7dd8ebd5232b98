#include "recorder/doctor_command.h"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <memory>
#include <thread>

#include "driver/model/gap.h"
#include "recorder/channel.h"
#include "recorder/console.h"
#include "recorder/device_summary.h"
#include "recorder/finding.h"
#include "recorder/host_device.h"
#include "recorder/live_values.h"
#include "recorder/open_device.h"
#include "recorder/own_event_log.h"
#include "recorder/recording_task.h"
#include "recorder/words.h"

namespace corvane::recorder {
namespace {

using Clock = std::chrono::steady_clock;

constexpr double TrialSeconds = 2;      // of a recording, at least one block of any rate
constexpr double WaitSeconds = 5;       // for its first kadr, and for the rest
constexpr double ClockTolerance = 0.1;  // of the rate; the short time and the last block allow no less

// Further lines stand below the first one's words.
std::string Indented(const std::string& lines) {
    std::string text;
    for (const char character : lines) {
        text += character;
        if (character == '\n') text += "        ";
    }
    return text;
}

// Collects what is found, and says it as it comes, or as JSON in the end.
class Report {
public:
    explicit Report(bool json) : Json_(json) {}

    // False when it fails: then nothing behind it can work.
    bool Add(Finding finding) {
        if (!Json_) WriteText(stdout, TextOf(finding));
        Findings_.push_back(std::move(finding));
        return Findings_.back().Result != Health::Fails;
    }

    void End(bool works) const {
        if (Json_) {
            WriteText(stdout, JsonOf(Findings_, works) + '\n');
        } else {
            WriteText(stdout, works ? "\nA recording works.\n" : "\nA recording would not work: see above.\n");
        }
    }

private:
    static std::string TextOf(const Finding& finding) {
        static constexpr const char* Marks[] = {"ok   ", "note ", "FAILS"};
        std::string text =
            fmt::format("{} {}: {}", Marks[static_cast<int>(finding.Result)], finding.Step, Indented(finding.Text));
        if (!finding.Remedy.empty()) text += "\n      > " + Indented(finding.Remedy);
        return text + '\n';
    }

    bool Json_;
    std::vector<Finding> Findings_;
};

std::string Joined(const std::vector<std::string>& lines) {
    std::string text;
    for (const std::string& line : lines) text += (text.empty() ? "" : "\n") + line;
    return text;
}

Finding ExamineDriver(const HostDevice& device) {
    Finding finding{"Driver", Health::Works, ""};
    std::vector<std::string> lines;
    for (const Library& library : device.Libraries()) {
        lines.push_back(LibraryText(library));
        if (library.Simulated) finding.Result = Health::Doubtful;
    }
    finding.Text = Joined(lines);
    if (finding.Result == Health::Doubtful && HostDevice::HasDialogs()) {
        finding.Remedy = "The crate is a simulated one. For a real one: ltr27rec driver --real";
    }
    return finding;
}

Finding ExamineUnits() {
    if (HostDevice::ReadsModuleTexts()) return {"Code page", Health::Works, "units of the modules can be read"};
    return {"Code page", Health::Doubtful, "Russian units of the modules come out as other letters; values are right",
            "Control Panel, Region, Administrative, Language for non-Unicode programs: Russian"};
}

Finding ExamineCrate(const Options& options, HostDevice& device, const OwnEventLog& log) {
    try {
        OpenDevice(options, device);
    } catch (const Failure& failure) {
        if (failure.Code == ExitCode::Usage) throw;
        const std::string words = failure.what();
        const size_t line = words.find('\n');
        std::string searched = log.OfSearch();
        if (!searched.empty()) searched += '\n';
        return {"Crate", Health::Fails, searched + words.substr(0, line),
                line == std::string::npos ? "" : words.substr(line + 1)};
    }
    const std::string searched = log.OfSearch();
    if (searched.find("\nslot ") == std::string::npos) return {"Crate", Health::Works, searched};
    return {"Crate", Health::Doubtful, searched,
            "Close every other program that uses the module, or have it looked at."};
}

Finding ExamineModules(const HostDevice& device) {
    std::vector<std::string> lines = SummaryOf(device).Lines();
    std::erase_if(lines, [](const std::string& line) { return !line.starts_with("Module: "); });
    std::string fitted;
    for (const Channel& channel : ReadChannels(device)) {
        if (channel.Fitted()) fitted += (fitted.empty() ? "" : ", ") + channel.Name;
    }
    if (fitted.empty()) {
        return {"Modules", Health::Fails, Joined(lines) + "\nno mezzanine in any position",
                "Switch the crate off, fit mezzanines, and switch it on again."};
    }
    return {"Modules", Health::Works, Joined(lines) + "\nChannels: " + fitted};
}

// A short recording, and what came of it.
struct Trial {
    int64_t Kadrs = 0;
    double Seconds = 0;           // from the first kadrs to the last ones
    int64_t KadrsAtFirst = 0;     // that were there when its time began
    std::vector<int16_t> Last{};  // samples of the last kadr
    std::vector<Gap> Gaps{};
};

double SecondsSince(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
}

Trial Record(HostDevice& device, const RecordingTask& task) {
    Trial trial;
    const size_t channels = task.Channels.size();
    std::vector<int16_t> samples(channels * static_cast<size_t>(std::max(device.InputSizeKadrs(), 1)));
    auto begin = Clock::now();
    while (trial.Kadrs < task.WantedKadrs && SecondsSince(begin) < WaitSeconds + TrialSeconds &&
           !InterruptRequested()) {
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
        const int32_t came = device.GetData(samples);
        if (came <= 0) continue;
        const auto end = samples.begin() + static_cast<ptrdiff_t>(static_cast<size_t>(came) * channels);
        trial.Last.assign(end - static_cast<ptrdiff_t>(channels), end);
        trial.Kadrs += came;
        if (trial.KadrsAtFirst == 0) {
            begin = Clock::now();
            trial.KadrsAtFirst = trial.Kadrs;
        }
        trial.Seconds = SecondsSince(begin);
    }
    trial.Gaps = device.Gaps();
    std::erase_if(trial.Gaps, [&](const Gap& gap) { return gap.First >= trial.Kadrs; });
    device.StopRecord();
    return trial;
}

Finding ExamineStart(const DeviceSummary& summary, int markMode, const Trial& trial) {
    constexpr int FirstWaiting = 3;  // of the modes in the setup dialog's list
    const std::string mode = fmt::format("START mark: {}", summary.StartMark);
    if (trial.Kadrs > 0) return {"Start", Health::Works, mode};
    if (markMode >= FirstWaiting) {
        return {"Start", Health::Fails, mode + fmt::format(". It did not come within {:.0f} s", WaitSeconds),
                "Connect what gives the mark, or choose Make Internal in the setup dialog: ltr27rec settings"};
    }
    return {"Start", Health::Fails, mode + fmt::format(". The modules sent nothing within {:.0f} s", WaitSeconds),
            "Switch the crate off and on again, and see that no other program has it open."};
}

// One reading of each channel.
Finding ExamineReadings(const RecordingTask& task, const Trial& trial) {
    Finding finding{"Readings", Health::Works, ""};
    std::vector<std::string> lines;
    for (size_t i = 0; i < task.Channels.size(); i++) {
        const Channel& channel = task.Channels[i];
        const int sample = trial.Last[i];
        const bool limit = sample <= LiveChannel::Lowest || sample >= LiveChannel::Highest;
        if (limit) finding.Result = Health::Doubtful;
        lines.push_back(fmt::format("{:>2}  {}  {:.6g} {}, range {}{}", channel.Number, channel.Name,
                                    channel.Physical(sample), channel.Unit, channel.Range,
                                    limit ? ", AT ITS LIMIT" : ""));
    }
    finding.Text = Joined(lines);
    if (finding.Result != Health::Works)
        finding.Remedy = "A channel at its limit is overloaded, or nothing is connected.";
    return finding;
}

Finding ExamineTrial(const RecordingTask& task, const Trial& trial, bool simulated) {
    const double rate = trial.Seconds > 0 ? static_cast<double>(trial.Kadrs - trial.KadrsAtFirst) / trial.Seconds : 0;
    const std::string text =
        fmt::format("{} at {:.6g} Hz; by the clock {:.4g} Hz", Counted(trial.Kadrs, "kadr"), task.Rate, rate);
    if (!trial.Gaps.empty()) {
        const Gap& first = trial.Gaps.front();
        return {"Recording", Health::Fails,
                fmt::format("{}; {} not measured, the first: slot {}, {}", text,
                            Counted(static_cast<int64_t>(trial.Gaps.size()), "gap"), task.SlotOf(first.Module),
                            ReasonText(first.Reason)),
                "See that the module sits firmly in its slot and that the crate's cable or network is free of faults."};
    }
    if (trial.Kadrs < task.WantedKadrs) {
        return {"Recording", Health::Fails, text + "; then nothing more came", "Switch the crate off and on again."};
    }
    if (std::abs(rate - task.Rate) > ClockTolerance * task.Rate && !simulated) {
        return {"Recording", Health::Doubtful, text,
                "Times of samples may be wrong: try again, and with another crate."};
    }
    return {"Recording", Health::Works, text + "; no gaps"};
}

ExitCode Walk(Options& options, Report& report) {
    for (Finding& finding : ExamineInstallation()) {
        if (!report.Add(std::move(finding))) return ExitCode::NoDriver;
    }
    const OwnEventLog log;
    std::unique_ptr<HostDevice> device;
    try {
        device = std::make_unique<HostDevice>();
    } catch (const Failure& failure) {
        report.Add({"Driver", Health::Fails, failure.what()});
        return failure.Code;
    }
    report.Add(ExamineDriver(*device));
    report.Add(ExamineUnits());
    if (!report.Add(ExamineCrate(options, *device, log))) return ExitCode::NoDevice;
    if (!report.Add(ExamineModules(*device))) return ExitCode::NoDevice;

    options.Channels.Fitted = true;
    options.Duration = TrialSeconds;
    const RecordingTask task = PrepareTask(options, *device);
    if (!device->StartRecord()) {
        report.Add({"Start", Health::Fails, device->LastError(),
                    "Close every other program that uses the crate, then switch it off and on again."});
        return ExitCode::StartFailed;
    }
    const DeviceSummary summary = SummaryOf(*device);
    const Trial trial = Record(*device, task);
    if (!report.Add(ExamineStart(summary, device->StartMarkMode(), trial))) return ExitCode::StartFailed;
    report.Add(ExamineReadings(task, trial));
    return report.Add(ExamineTrial(task, trial, summary.Simulated())) ? ExitCode::Success : ExitCode::Incomplete;
}

}  // namespace

ExitCode Examine(const Options& options) {
    Options own = options;
    Report report(options.Json);
    WatchInterrupt();
    const ExitCode code = Walk(own, report);
    report.End(code == ExitCode::Success);
    return code;
}

}  // namespace corvane::recorder
