#include "recorder/doctor_command.h"

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
#include "recorder/messages.h"
#include "recorder/open_device.h"
#include "recorder/own_event_log.h"
#include "recorder/recording_task.h"
#include "recorder/text_columns.h"
#include "recorder/words.h"

namespace corvane::recorder {
namespace {

using Clock = std::chrono::steady_clock;

constexpr double TrialSeconds = 2;      // of a recording, at least one block of any rate
constexpr double WaitSeconds = 5;       // for its first kadr, and for the rest
constexpr double ClockTolerance = 0.1;  // of the rate; the short time and the last block allow no less

// Further lines stand below the first one's words.
std::string Indented(const std::string& lines, size_t columns) {
    std::string text;
    for (const char character : lines) {
        text += character;
        if (character == '\n') text.append(columns, ' ');
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
            const Text end = works ? Text("A recording works.") : Text("A recording would not work: see above.");
            WriteText(stdout, '\n' + Say(end) + '\n');
        }
    }

private:
    static std::string TextOf(const Finding& finding) {
        static constexpr Text Marks[] = {"ok", "note", "FAILS"};
        size_t columns = 0;
        for (const Text mark : Marks) columns = std::max(columns, ColumnsOf(Say(mark)) + 1);
        std::string text = Fitted(Say(Marks[static_cast<int>(finding.Result)]), columns) + Say(finding.Step) + ": ";
        text += Indented(finding.Words, columns + 2);
        if (!finding.Remedy.empty()) {
            text += '\n' + std::string(columns, ' ') + "> " + Indented(finding.Remedy, columns + 2);
        }
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

// The driver's log as the user reads.
std::string SearchText(const std::vector<std::string>& lines) {
    constexpr std::string_view Slots = ", slots ";
    const std::string slots = Say(", slots ");
    std::string text;
    for (const std::string& line : lines) text += (text.empty() ? "" : "\n") + Translated(line);
    for (size_t place = 0; (place = text.find(Slots, place)) != std::string::npos; place += slots.size()) {
        text.replace(place, Slots.size(), slots);
    }
    return text;
}

Finding ExamineDriver(const HostDevice& device) {
    Finding finding{"Driver", Health::Works, ""};
    std::vector<std::string> lines;
    for (const Library& library : device.Libraries()) {
        lines.push_back(LibraryText(UserLanguage(), library));
        if (library.Simulated) finding.Result = Health::Doubtful;
    }
    finding.Words = Joined(lines);
    if (finding.Result == Health::Doubtful && HostDevice::HasDialogs()) {
        finding.Remedy = Say("The crate is a simulated one. For a real one: ltr27rec driver --real");
    }
    return finding;
}

Finding ExamineUnits() {
    if (HostDevice::ReadsModuleTexts()) return {"Code page", Health::Works, Say("units of the modules can be read")};
    return {"Code page", Health::Doubtful,
            Say("Russian units of the modules come out as other letters; values are right"),
            Say("Control Panel, Region, Administrative, Language for non-Unicode programs: Russian")};
}

Finding ExamineCrate(const Options& options, HostDevice& device, const OwnEventLog& log) {
    try {
        OpenDevice(options, device);
    } catch (const Failure& failure) {
        if (failure.Code == ExitCode::Usage) throw;
        const std::string words = failure.what();
        const size_t line = words.find('\n');
        std::string searched = SearchText(log.OfSearch());
        if (!searched.empty()) searched += '\n';
        return {"Crate", Health::Fails, searched + words.substr(0, line),
                line == std::string::npos ? "" : words.substr(line + 1)};
    }
    const std::vector<std::string> searched = log.OfSearch();
    const auto ofSlot = [](const std::string& line) { return line.starts_with("slot "); };
    if (std::ranges::none_of(searched, ofSlot)) return {"Crate", Health::Works, SearchText(searched)};
    return {"Crate", Health::Doubtful, SearchText(searched),
            Say("Close every other program that uses the module, or have it looked at.")};
}

Finding ExamineModules(const HostDevice& device) {
    const std::vector<std::string> lines = SummaryOf(device).ModuleLines(UserLanguage());
    std::string fitted;
    for (const Channel& channel : ReadChannels(device)) {
        if (channel.Fitted()) fitted += (fitted.empty() ? "" : ", ") + channel.Name;
    }
    if (fitted.empty()) {
        return {"Modules", Health::Fails, Joined(lines) + '\n' + Say("no mezzanine in any position"),
                Say("Switch the crate off, fit mezzanines, and switch it on again.")};
    }
    return {"Modules", Health::Works, Joined(lines) + '\n' + Say("Channels: {}", fitted)};
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
    const std::string& mode = summary.StartMark;
    if (trial.Kadrs > 0) return {"Start", Health::Works, Say("START mark: {}", mode)};
    if (markMode >= FirstWaiting) {
        return {"Start", Health::Fails, Say("START mark: {}. It did not come within {:.0f} s", mode, WaitSeconds),
                Say("Connect what gives the mark, or choose Make Internal in the setup dialog: ltr27rec settings")};
    }
    return {"Start", Health::Fails, Say("START mark: {}. The modules sent nothing within {:.0f} s", mode, WaitSeconds),
            Say("Switch the crate off and on again, and see that no other program has it open.")};
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
        lines.push_back(Say("{:>2}  {}  {:.6g} {}, range {}", channel.Number, channel.Name, channel.Physical(sample),
                            channel.Unit, channel.Range) +
                        Say(limit ? Text(", AT ITS LIMIT") : Text()));
    }
    finding.Words = Joined(lines);
    if (finding.Result != Health::Works) {
        finding.Remedy = Say("A channel at its limit is overloaded, or nothing is connected.");
    }
    return finding;
}

Finding ExamineTrial(const RecordingTask& task, const Trial& trial, bool simulated) {
    const double rate = trial.Seconds > 0 ? static_cast<double>(trial.Kadrs - trial.KadrsAtFirst) / trial.Seconds : 0;
    const std::string text =
        Say("{} at {:.6g} Hz; by the clock {:.4g} Hz", Counted(trial.Kadrs, KadrNoun), task.Rate, rate);
    if (!trial.Gaps.empty()) {
        const Gap& first = trial.Gaps.front();
        return {"Recording", Health::Fails,
                Say("{}; {} not measured, the first: slot {}, {}", text,
                    Counted(static_cast<int64_t>(trial.Gaps.size()), GapNoun), task.SlotOf(first.Module),
                    Translated(ReasonText(first.Reason))),
                Say("See that the module sits firmly in its slot and that the crate's cable or network is free of "
                    "faults.")};
    }
    if (trial.Kadrs < task.WantedKadrs) {
        return {"Recording", Health::Fails, Say("{}; then nothing more came", text),
                Say("Switch the crate off and on again.")};
    }
    if (std::abs(rate - task.Rate) > ClockTolerance * task.Rate && !simulated) {
        return {"Recording", Health::Doubtful, text,
                Say("Times of samples may be wrong: try again, and with another crate.")};
    }
    return {"Recording", Health::Works, Say("{}; no gaps", text)};
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
                    Say("Close every other program that uses the crate, then switch it off and on again.")});
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
