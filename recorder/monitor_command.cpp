#include "recorder/monitor_command.h"

#include <algorithm>
#include <chrono>
#include <optional>
#include <thread>

#include "recorder/console.h"
#include "recorder/device_summary.h"
#include "recorder/live_values.h"
#include "recorder/monitor_picture.h"
#include "recorder/output_file.h"
#include "recorder/recorded_gaps.h"
#include "recorder/recording_task.h"
#include "recorder/words.h"

namespace corvane::recorder {
namespace {

using Clock = std::chrono::steady_clock;
constexpr auto LookInterval = std::chrono::milliseconds(200);
constexpr auto PollInterval = std::chrono::milliseconds(40);
constexpr auto SilenceMax = std::chrono::seconds(2);  // no block takes so long
constexpr size_t TakeKadrs = 4096;                    // kadrs taken by one call at most
constexpr ScreenSize Unlimited = {120, 1000};         // of text that no terminal shows

class Watch {
public:
    Watch(const Options& options, HostDevice& device)
        : Options_(options),
          Device_(device),
          Task_(PrepareTask(options, device)),
          Values_(Task_),
          Samples_(TakeKadrs * Task_.Channels.size()) {
        const DeviceSummary summary = SummaryOf(device);
        State_.Device = summary.Device(options.Json ? Language::English : UserLanguage());
        State_.Crate = summary.CrateSerial;
        State_.Rate = Task_.Rate;
    }

    ExitCode Run() {
        StartRecording(Device_);
        if (!Options_.Once && !Options_.Json) Screen_.emplace();
        Start_ = LastData_ = Clock::now();
        Clock::time_point nextLook = Start_ + LookInterval;
        while (!InterruptRequested()) {
            const bool busy = Device_.Busy();  // asked before looking for data
            const bool taken = Take();
            if (!taken && !busy) throw Failure(ExitCode::Incomplete, Say("The driver ended. {}", Device_.LastError()));
            const Clock::time_point now = Clock::now();
            if (now >= nextLook && Due(now)) {
                Show(now);
                if (Options_.Once) return Complete() ? ExitCode::Success : ExitCode::Incomplete;
                nextLook = std::max(nextLook + LookInterval, now);
            }
            if (Device_.InputCountKadrs() < static_cast<int32_t>(TakeKadrs)) std::this_thread::sleep_for(PollInterval);
        }
        return ExitCode::Interrupted;
    }

private:
    bool Take() {
        const int32_t kadrs = Device_.GetData(Samples_);
        if (kadrs <= 0) return false;
        const auto samples = std::span(Samples_).first(static_cast<size_t>(kadrs) * Task_.Channels.size());
        Values_.Add({samples, Gaps_.Add(kadrs, Device_.Gaps())});
        LastData_ = Clock::now();
        return true;
    }

    // A single look waits for something to see, but not forever.
    bool Due(Clock::time_point now) const {
        return !Options_.Once || Values_.Kadrs() > 0 ||
               (Options_.StallTimeout > 0 && now - Start_ >= std::chrono::duration<double>(Options_.StallTimeout));
    }

    void Show(Clock::time_point now) {
        const bool silent = now - LastData_ >= SilenceMax;
        State_.Time = Iso8601(std::chrono::system_clock::now());
        State_.Kadrs = Values_.Kadrs();
        State_.Gaps = Gaps_.Gaps().size();
        State_.Missing = Values_.Missing();
        State_.Trouble = Say(!silent             ? Text()
                             : State_.Kadrs == 0 ? Text("No data: no START mark, or the module sends nothing.")
                                                 : Text("No data: the driver hangs."));
        State_.Channels = Values_.Look(Gaps_, silent);
        const ScreenSize size = IsTerminal(stdout) ? TerminalSize(stdout) : Unlimited;
        if (Screen_) {
            Written(Screen::Draw(MonitorPicture(State_, size.Columns, size.Rows), size));
        } else if (Options_.Json) {
            Written(WriteText(stdout, MonitorJson(State_)));
        } else {
            std::string text;
            for (const std::string& line : MonitorPicture(State_, size.Columns, Unlimited.Rows)) text += line + '\n';
            Written(WriteText(stdout, text));
        }
    }

    static void Written(bool whole) {
        if (!whole) OutputFile::ThrowNotWritten(Say("Standard output"));
    }

    // Whether every channel has been measured all the time.
    bool Complete() const {
        return State_.Kadrs > 0 && State_.Gaps == 0 &&
               std::ranges::all_of(State_.Channels, [](const LiveChannel& each) { return each.Newest.has_value(); });
    }

    const Options& Options_;
    HostDevice& Device_;
    RecordingTask Task_;
    RecordedGaps Gaps_;
    LiveValues Values_;
    std::vector<int16_t> Samples_;
    MonitorState State_;
    std::optional<Screen> Screen_;
    Clock::time_point Start_;
    Clock::time_point LastData_;  // or the start
};

}  // namespace

ExitCode Monitor(const Options& options, HostDevice& device) {
    if (!options.Once && !options.Json && !IsTerminal(stdout)) {
        throw Failure(
            ExitCode::Usage,
            Say("monitor draws on a terminal, and standard output is none. Use --once for one table, or --json for a "
                "line of JSON five times a second."));
    }
    Watch watch(options, device);
    const ExitCode code = watch.Run();
    device.StopRecord();
    return code;
}

}  // namespace corvane::recorder
