#include "recorder/recording_task.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <string_view>

#include "recorder/console.h"
#include "recorder/failure.h"
#include "recorder/messages.h"
#include "recorder/taken_kadrs.h"

namespace corvane::recorder {
namespace {

std::vector<int16_t> WantedNumbers(const ChannelChoice& choice, const std::vector<Channel>& all) {
    std::set<int16_t> numbers = choice.Numbers;
    for (const Channel& channel : all) {
        if (choice.All || (choice.Fitted && channel.Fitted())) numbers.insert(channel.Number);
    }
    return {numbers.begin(), numbers.end()};
}

std::vector<Channel> SelectChannels(const Options& options, HostDevice& device) {
    const std::vector<Channel> all = ReadChannels(device);
    const std::vector<int16_t> numbers = WantedNumbers(options.Channels, all);
    if (numbers.empty()) {
        throw Failure(ExitCode::NoDevice, Say("The module has no mezzanine fitted: there is nothing to record."));
    }
    if (numbers.back() >= static_cast<int>(all.size())) {
        throw Failure(ExitCode::Usage,
                      Say("Channel {} does not exist: the device has channels 0 to {}. ltr27rec list shows them.",
                          numbers.back(), all.size() - 1));
    }
    device.SetInputChannels(numbers);
    std::vector<Channel> selected;
    for (const int16_t number : device.InputChannels()) selected.push_back(all.at(static_cast<size_t>(number)));
    return selected;
}

// The slot that a module's description names; 0: none.
int SlotIn(const std::string& moduleInfo) {
    static constexpr std::string_view Label = "Crate Slot: ";
    const size_t label = moduleInfo.find(Label);
    return label == std::string::npos ? 0 : std::atoi(moduleInfo.c_str() + label + Label.size());
}

std::vector<RecordedModule> ModulesOf(const std::vector<Channel>& channels, const HostDevice& device) {
    std::vector<RecordedModule> modules;
    for (const Channel& channel : channels) {
        const auto index = static_cast<int16_t>(channel.Number / ModuleChannels);
        if (modules.empty() || modules.back().Index != index)
            modules.push_back({index, SlotIn(device.ModuleInfo(index))});
    }
    return modules;
}

}  // namespace

int RecordingTask::SlotOf(int32_t module) const {
    for (const RecordedModule& each : Modules) {
        if (each.Index == module) return each.Slot;
    }
    return 0;
}

int RecordingTask::Unfitted() const {
    return static_cast<int>(std::ranges::count_if(Channels, [](const Channel& channel) { return !channel.Fitted(); }));
}

RecordingTask PrepareTask(const Options& options, HostDevice& device) {
    RecordingTask task;
    task.Channels = SelectChannels(options, device);
    task.Modules = ModulesOf(task.Channels, device);
    if (options.Rate) device.SetRate(static_cast<float>(*options.Rate));
    task.Rate = static_cast<double>(device.Rate());
    task.WantedKadrs = options.Kadrs;
    if (options.Duration) task.WantedKadrs = std::max<int64_t>(1, std::llround(*options.Duration * task.Rate));
    return task;
}

void StartRecording(HostDevice& device) {
    constexpr int32_t RingKadrs = 65536;
    device.SetInputSizeData(RingKadrs);
    WatchInterrupt();
    if (device.StartRecord()) return;
    throw Failure(ExitCode::StartFailed,
                  Say("The recording could not be started. {}\nSee that no other program records from the same module, "
                      "then try again.",
                      device.LastError()));
}

void TellDifferences(const Options& options, const RecordingTask& task, Progress& progress) {
    if (options.Rate && std::abs(*options.Rate - task.Rate) > 1e-4 * task.Rate) {
        progress.Note(
            Say("The rate is {:.6g} Hz, the nearest that the device has to {:.6g} Hz.", task.Rate, *options.Rate));
    }
    for (const Channel& channel : task.Channels) {
        if (channel.Fitted()) continue;
        progress.Warn(Say("Channel {} has no mezzanine: nothing can be measured there.", channel.Number));
    }
}

}  // namespace corvane::recorder
