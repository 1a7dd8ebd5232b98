#include "recorder/recording_loop.h"

#include <fmt/format.h>
#include <algorithm>
#include <span>
#include <thread>

#include "recorder/console.h"

namespace corvane::recorder {
namespace {

constexpr size_t TakeKadrs = 4096;  // kadrs taken by one call at most
constexpr auto PollInterval = std::chrono::milliseconds(40);
constexpr double StallWarning = 10;  // s

}  // namespace

RecordingLoop::RecordingLoop(double stallTimeout, HostDevice& device, const RecordingTask& task, RecordingFiles& files,
                             DataCheck& check, Progress& progress)
    : StallTimeout_(stallTimeout),
      Device_(device),
      Task_(task),
      Files_(files),
      Check_(check),
      Progress_(progress),
      Samples_(TakeKadrs * task.Channels.size()) {}

Verdict RecordingLoop::Run() {
    End end = TakeUntilEnd();
    const std::string reason = ReasonOf(end);
    Device_.StopRecord();
    while (Kadrs_ < Task_.WantedKadrs && Take()) {
    }
    if (Kadrs_ == Task_.WantedKadrs) end = End::Complete;
    return {end, reason, Kadrs_, Task_.WantedKadrs, Check_.Doubts()};
}

End RecordingLoop::TakeUntilEnd() {
    while (Kadrs_ < Task_.WantedKadrs) {
        if (InterruptRequested()) return End::Interrupted;
        // Asked before looking for data: what a driver that has stopped leaves in its ring is still taken.
        const bool busy = Device_.Busy();
        const bool taken = Take();
        if (!taken && !busy) return End::Stopped;
        if (!taken && Stalled()) return End::Stalled;
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
    Files_.Add(samples);
    Check_.Add(samples);
    Kadrs_ += kadrs;
    LastData_ = now;
    return true;
}

bool RecordingLoop::Stalled() {
    const double silence = std::chrono::duration<double>(Clock::now() - LastData_).count();
    if (StallTimeout_ > 0 && silence >= StallTimeout_) return true;
    if (silence < StallWarning || StallWarned_) return false;
    StallWarned_ = true;
    const char* advice = Kadrs_ == 0 ? "If the START mark is to come from outside (DIGIN1 or DIGIN2), it has not come "
                                       "yet; otherwise the module sends nothing: check the crate and the LTR server."
                                     : "Check the crate, its cable and the LTR server.";
    const std::string then = StallTimeout_ > 0
                                 ? fmt::format("Giving up after {:.6g} s; Ctrl+C ends now.", StallTimeout_)
                                 : "Waiting on; Ctrl+C ends the recording.";
    Progress_.Warn(fmt::format("No data for {:.0f} s. {} {}", StallWarning, advice, then));
    return false;
}

void RecordingLoop::WarnOnDoubt() {
    if (DoubtWarned_ || !Check_.Doubtful()) return;
    DoubtWarned_ = true;
    Progress_.Warn("Data is being lost or repeated. Check the crate, its connection and this computer's load.");
}

std::string RecordingLoop::ReasonOf(End end) const {
    if (end == End::Stalled) return fmt::format("no data came for {:.6g} s", StallTimeout_);
    if (end == End::Stopped) return "the driver ended the recording. " + Device_.LastError();
    return "";
}

}  // namespace corvane::recorder
