#include "recorder/record_command.h"

#include <fmt/format.h>
#include <chrono>
#include <cmath>
#include <ctime>
#include <optional>
#include <thread>

#include "recorder/channel.h"
#include "recorder/console.h"
#include "recorder/csv_writer.h"
#include "recorder/data_clock.h"
#include "recorder/envelope.h"
#include "recorder/output_file.h"
#include "recorder/progress.h"
#include "recorder/repeat_check.h"
#include "recorder/svg_plot.h"

namespace corvane::recorder {
namespace {

using Clock = std::chrono::steady_clock;

constexpr int32_t RingKadrs = 65536;   // a minute at the highest rate
constexpr int32_t BlockKadrsMax = 64;  // the driver stores no more kadrs at once
constexpr size_t TakeKadrs = 4096;     // kadrs taken by one call at most
constexpr auto PollInterval = std::chrono::milliseconds(40);
constexpr auto WriteInterval = std::chrono::seconds(2);  // no more is lost when the power fails
constexpr double StallWarning = 10;                      // s

enum class End { Complete, Interrupted, Stalled, Stopped };

// Gives the driver the channels to record and returns them as it took them.
std::vector<Channel> SelectChannels(const Options& options, HostDevice& device) {
    const std::vector<Channel> all = ReadChannels(device);
    std::vector<int16_t> numbers;
    if (options.Channels) {
        numbers = *options.Channels;
    } else {
        for (const Channel& channel : all) {
            if (channel.Fitted()) numbers.push_back(channel.Number);
        }
    }
    if (numbers.empty()) {
        throw Failure(ExitCode::NoDevice, "The module has no mezzanine fitted: there is nothing to record.");
    }
    if (numbers.back() >= static_cast<int>(all.size())) {
        throw Failure(ExitCode::Usage, fmt::format("Channel {} does not exist: the device has channels 0 to {}. "
                                                   "ltr27rec list shows them.",
                                                   numbers.back(), all.size() - 1));
    }
    device.SetInputChannels(numbers);
    std::vector<Channel> selected;
    for (const int16_t number : device.InputChannels()) selected.push_back(all.at(static_cast<size_t>(number)));
    return selected;
}

double ChooseRate(const Options& options, HostDevice& device) {
    if (options.Rate) device.SetRate(static_cast<float>(*options.Rate));
    return static_cast<double>(device.Rate());
}

class Recording {
public:
    Recording(const Options& options, HostDevice& device)
        : Options_(options),
          Device_(device),
          Channels_(SelectChannels(options, device)),
          Rate_(ChooseRate(options, device)),
          Wanted_(std::max<int64_t>(1, std::llround(options.Duration * Rate_))),
          Samples_(TakeKadrs * Channels_.size()),
          Csv_(Channels_, Rate_),
          CsvFile_(options.OutputPath),
          Envelope_(Channels_.size()),
          DataClock_(Rate_),
          RepeatCheck_(Channels_, Rate_),
          Progress_(Wanted_, options.Quiet) {
        if (!options.PlotPath.empty()) PlotFile_.emplace(options.PlotPath);
    }

    ExitCode Run();

private:
    void Start();
    End TakeUntilEnd();
    bool Take();
    bool Stalled();
    bool Doubtful() const;
    void WarnOnDoubt();
    std::string Outcome(End end) const;
    void WriteOutcome(End end);

    const Options& Options_;
    HostDevice& Device_;
    std::vector<Channel> Channels_;
    double Rate_;     // Hz
    int64_t Wanted_;  // kadrs
    int64_t Kadrs_ = 0;
    std::vector<int16_t> Samples_;
    CsvWriter Csv_;
    OutputFile CsvFile_;
    std::optional<OutputFile> PlotFile_;
    Envelope Envelope_;
    DataClock DataClock_;
    RepeatCheck RepeatCheck_;
    Progress Progress_;
    std::time_t StartTime_ = 0;
    Clock::time_point LastData_;  // or the start
    Clock::time_point LastWrite_;
    bool StallWarned_ = false;
    bool DoubtWarned_ = false;
    bool RingFull_ = false;
};

void Recording::Start() {
    if (Options_.Rate && std::abs(*Options_.Rate - Rate_) > 1e-4 * Rate_) {
        Progress_.Note(
            fmt::format("The rate is {:.6g} Hz, the nearest that the device has to {:.6g} Hz.", Rate_, *Options_.Rate));
    }
    for (const Channel& channel : Channels_) {
        if (!channel.Fitted()) Progress_.Warn(fmt::format("Channel {} is empty: its samples are 0.", channel.Number));
    }
    Device_.SetInputSizeData(RingKadrs);
    WatchInterrupt();
    if (!Device_.StartRecord()) {
        throw Failure(ExitCode::StartFailed,
                      fmt::format("The recording could not be started. {}\nSee that no other program records from the "
                                  "same module, then try again.",
                                  Device_.LastError()));
    }
    StartTime_ = std::time(nullptr);
    LastData_ = LastWrite_ = Clock::now();
    Csv_.AppendHeader(CsvFile_.Buffer(), Device_.ADCName(), StartTime_, Wanted_);
    CsvFile_.Write();
}

// One call's worth of kadrs, no more than are wanted. False when none had come.
bool Recording::Take() {
    const int32_t unread = Device_.InputCountKadrs();
    const Clock::time_point now = Clock::now();
    RingFull_ = RingFull_ || unread + BlockKadrsMax > Device_.InputSizeKadrs();
    DataClock_.Observe(Kadrs_ + unread, now);
    Progress_.Show(Kadrs_, unread);

    const auto room = static_cast<size_t>(std::min<int64_t>(TakeKadrs, Wanted_ - Kadrs_)) * Channels_.size();
    const int32_t kadrs = Device_.GetData(std::span(Samples_).first(room));
    if (kadrs <= 0) return false;
    const auto samples = std::span(Samples_).first(static_cast<size_t>(kadrs) * Channels_.size());
    Csv_.AppendRows(CsvFile_.Buffer(), samples);
    Envelope_.Add(samples);
    RepeatCheck_.Add(samples);
    Kadrs_ += kadrs;
    LastData_ = now;
    CsvFile_.WriteWhenLarge();
    return true;
}

bool Recording::Stalled() {
    const double silence = std::chrono::duration<double>(Clock::now() - LastData_).count();
    if (Options_.StallTimeout > 0 && silence >= Options_.StallTimeout) return true;
    if (silence >= StallWarning && !StallWarned_) {
        StallWarned_ = true;
        Progress_.Warn(fmt::format(
            "No data for {:.0f} s. {} {}", StallWarning,
            Kadrs_ == 0
                ? "If the START mark is to come from outside (DIGIN1 or DIGIN2), it has not come yet; otherwise "
                  "the module sends nothing: check the crate and the LTR server."
                : "Check the crate, its cable and the LTR server.",
            Options_.StallTimeout > 0 ? fmt::format("Giving up after {:.6g} s; Ctrl+C ends now.", Options_.StallTimeout)
                                      : "Waiting on; Ctrl+C ends the recording."));
    }
    return false;
}

bool Recording::Doubtful() const {
    return DataClock_.Doubtful() || RepeatCheck_.FilledInKadrs() > 0 || RingFull_;
}

void Recording::WarnOnDoubt() {
    if (DoubtWarned_ || !Doubtful()) return;
    DoubtWarned_ = true;
    Progress_.Warn("Data is being lost or repeated. Check the crate, its connection and this computer's load.");
}

End Recording::TakeUntilEnd() {
    while (Kadrs_ < Wanted_) {
        if (InterruptRequested()) return End::Interrupted;
        const bool busy = Device_.Busy();  // before looking for data: what a stopped driver leaves is still taken
        const bool taken = Take();
        if (!taken && !busy) return End::Stopped;
        if (!taken && Stalled()) return End::Stalled;
        WarnOnDoubt();
        if (Clock::now() - LastWrite_ >= WriteInterval) {
            CsvFile_.Write();
            LastWrite_ = Clock::now();
        }
        if (Device_.InputCountKadrs() < static_cast<int32_t>(TakeKadrs)) std::this_thread::sleep_for(PollInterval);
    }
    return End::Complete;
}

std::string Recording::Outcome(End end) const {
    const std::string count = fmt::format("{} of {} kadrs", Kadrs_, Wanted_);
    switch (end) {
        case End::Complete:
            return Doubtful() ? "complete, but doubtful" : "complete";
        case End::Interrupted:
            return "interrupted: " + count;
        case End::Stalled:
            return fmt::format("incomplete: {}, no data came for {:.6g} s", count, Options_.StallTimeout);
        case End::Stopped:
            break;
    }
    return fmt::format("incomplete: {}, the driver ended the recording. {}", count, Device_.LastError());
}

void Recording::WriteOutcome(End end) {
    std::vector<std::string> remarks;
    if (DataClock_.Doubtful()) {
        const double lead = DataClock_.WorstLead();
        remarks.push_back(fmt::format("doubtful: the data was up to {:.1f} s {} the clock, some may be {}",
                                      std::abs(lead), lead < 0 ? "behind" : "ahead of",
                                      lead < 0 ? "missing or filled in" : "repeated"));
    }
    if (const int64_t kadrs = RepeatCheck_.FilledInKadrs(); kadrs > 0) {
        remarks.push_back(fmt::format("doubtful: a module sent nothing for {} kadrs ({:.6g} s), they were filled in",
                                      kadrs, static_cast<double>(kadrs) / Rate_));
    }
    if (RingFull_) {
        remarks.push_back("doubtful: the driver's ring was full, this computer was too slow and data may be missing");
    }
    for (const std::string& remark : remarks) Progress_.Warn("Warning: " + remark);
    // The summary says how it ended; without it, this does.
    if (end != End::Complete && Options_.Quiet) Progress_.Warn("Warning: " + Outcome(end));
    if (end != End::Complete) remarks.push_back(Outcome(end));
    for (const std::string& remark : remarks) CsvFile_.Buffer() += fmt::format("# {}\n", remark);
    CsvFile_.Close();
    if (PlotFile_) {
        const std::string details = fmt::format("{}, {:.6g} Hz, {} kadrs", Iso8601(StartTime_), Rate_, Kadrs_);
        PlotFile_->Buffer() = RenderPlot({Device_.ADCName(), details, Rate_, Channels_, Envelope_});
        PlotFile_->Close();
    }
}

ExitCode Recording::Run() {
    Start();
    End end = TakeUntilEnd();
    Device_.StopRecord();
    while (Kadrs_ < Wanted_ && Take()) {
    }
    if (Kadrs_ == Wanted_) end = End::Complete;
    Progress_.EndLine();
    WriteOutcome(end);
    if (!Options_.Quiet) {
        WriteText(stdout,
                  fmt::format("{}: {} kadrs of {} channels at {:.6g} Hz ({:.6g} s), {}\n", Options_.OutputPath, Kadrs_,
                              Channels_.size(), Rate_, static_cast<double>(Kadrs_) / Rate_, Outcome(end)));
        if (PlotFile_) WriteText(stdout, Options_.PlotPath + ": plot\n");
    }
    if (end == End::Interrupted) return ExitCode::Interrupted;
    return end == End::Complete && !Doubtful() ? ExitCode::Success : ExitCode::Incomplete;
}

}  // namespace

ExitCode Record(const Options& options, HostDevice& device) {
    return Recording(options, device).Run();
}

}  // namespace corvane::recorder
