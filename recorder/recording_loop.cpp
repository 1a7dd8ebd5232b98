#include "recorder/recording_loop.h"

#include <algorithm>
#include <span>
#include <thread>

#include "recorder/console.h"
#include "recorder/messages.h"
#include "recorder/taken_kadrs.h"

namespace corvane::recorder {
namespace {

constexpr size_t TakeKadrs = 4096;  // kadrs taken by one call at most
constexpr auto PollInterval = std::chrono::milliseconds(40);
constexpr double StallWarning = 10;  // s

}  // namespace

RecordingLoop::RecordingLoop(double stallTimeout, HostDevice& device, const RecordingTask& task, RecordingFiles& files,
                             RecordedGaps& gaps, DataCheck& check, Progress& progress)
    : StallTimeout_(stallTimeout),
      Device_(device),
      Task_(task),
      Files_(files),
      Gaps_(gaps),
      Check_(check),
      Progress_(progress),
      Samples_(TakeKadrs * task.Channels.size()) {
    for (const RecordedModule& module : task.Modules) Watches_.emplace_back(module.Slot);
}

Verdict RecordingLoop::Run() {
    End end = TakeUntilEnd();
    const std::string reason = ReasonOf(end);
    Device_.StopRecord();
    while (Kadrs_ < Task_.WantedKadrs && Take()) {
    }
    if (Kadrs_ == Task_.WantedKadrs) end = End::Complete;
    return {end, reason, Kadrs_, Task_.WantedKadrs, Check_.Doubts(), Gaps_.Gaps(), Task_.Unfitted()};
}

End RecordingLoop::TakeUntilEnd() {
    while (Kadrs_ < Task_.WantedKadrs) {
        if (InterruptRequested()) return End::Interrupted;
        // Asked before looking for data: what a driver that has stopped leaves in its ring is still taken.
        const bool busy = Device_.Busy();
        const bool taken = Take();
        if (!taken && !busy) return End::Stopped;
        if (Stalled()) return End::Stalled;
        WarnOnDoubt();
        Files_.WriteWhenDue();
        if (Device_.InputCountKadrs() < static_cast<int32_t>(TakeKadrs)) std::this_thread::sleep_for(PollInterval);
    }
    return End::Complete;
}

// Takes the kadrs of one call, no more than are wanted. False when none had come.
bool RecordingLoop::Take() {
    const int32_t unread = Device_.InputCountKadrs();
    const Clock::time_point now = Clock::now();
    Check_.Observe(Kadrs_, unread, Device_.InputSizeKadrs(), now);
    Progress_.Show(Kadrs_, unread);

    const size_t channels = Task_.Channels.size();
    const auto room = static_cast<size_t>(std::min<int64_t>(TakeKadrs, Task_.WantedKadrs - Kadrs_)) * channels;
    const int32_t kadrs = Device_.GetData(std::span(Samples_).first(room));
    if (kadrs <= 0) return false;
    const auto samples = std::span(Samples_).first(static_cast<size_t>(kadrs) * channels);
    const auto missing = Gaps_.Add(kadrs, Device_.Gaps());
    Files_.Add({samples, missing});
    Kadrs_ += kadrs;
    if (SomeMeasured(missing)) LastMeasured_ = Clock::now();  // a reader of what was written may have been slow
    WatchModules(now);
    return true;
}

// Whether any recorded module has measured any of the kadrs just taken. Once the driver's list of gaps is full it may
// say less than was measured: then it has the benefit of the doubt.
bool RecordingLoop::SomeMeasured(std::span<const uint8_t> missing) const {
    uint8_t all = 0;
    for (const RecordedModule& module : Task_.Modules) {
        if (Gaps_.NewestReason(module.Index) == GapReason::Various) return true;
        all |= MissingBit(module.Index);
    }
    return std::ranges::any_of(missing, [all](uint8_t bits) { return (bits & all) != all; });
}

void RecordingLoop::WatchModules(Clock::time_point now) {
    for (size_t i = 0; i < Watches_.size(); i++) {
        const std::string text = Watches_[i].Observe(Gaps_.NewestReason(Task_.Modules[i].Index), now);
        if (!text.empty()) Progress_.Warn(text);
    }
}

bool RecordingLoop::Stalled() {
    const double silence = std::chrono::duration<double>(Clock::now() - LastMeasured_).count();
    if (StallTimeout_ > 0 && silence >= StallTimeout_) return true;
    if (silence < StallWarning || StallWarned_) return false;
    StallWarned_ = true;
    const std::string what =
        Kadrs_ == 0
            ? Say("No data for {:.0f} s. If the START mark is to come from outside (DIGIN1 or DIGIN2), it has "
                  "not come yet; otherwise the module sends nothing: check the crate and the LTR server.",
                  StallWarning)
            : Say("Nothing measured for {:.0f} s. Check the crate, its cable and the LTR server.", StallWarning);
    const std::string then = StallTimeout_ > 0 ? Say("Giving up after {:.6g} s; Ctrl+C ends now.", StallTimeout_)
                                               : Say("Waiting on; Ctrl+C ends the recording.");
    Progress_.Warn(what + ' ' + then);
    return false;
}

void RecordingLoop::WarnOnDoubt() {
    if (DoubtWarned_) return;
    for (const std::string& doubt : Check_.Doubts()) {
        DoubtWarned_ = true;
        Progress_.Warn(Say("Warning, so far: {}", Translated(doubt)));
    }
}

// In English, as files have it.
std::string RecordingLoop::ReasonOf(End end) const {
    if (end == End::Stalled) {
        return Kadrs_ == 0 ? SayIn(Language::English, "no data came for {:.6g} s", StallTimeout_)
                           : SayIn(Language::English, "nothing was measured for {:.6g} s", StallTimeout_);
    }
    if (end == End::Stopped) return SayIn(Language::English, "the driver ended the recording. {}", Device_.LastError());
    return "";
}

}  // namespace corvane::recorder
