#include "recorder/recording_task.h"

#include <fmt/format.h>
#include <algorithm>
#include <cmath>

#include "recorder/failure.h"

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

}  // namespace

RecordingTask PrepareTask(const Options& options, HostDevice& device) {
    RecordingTask task;
    task.Channels = SelectChannels(options, device);
    if (options.Rate) device.SetRate(static_cast<float>(*options.Rate));
    task.Rate = static_cast<double>(device.Rate());
    task.WantedKadrs = std::max<int64_t>(1, std::llround(options.Duration * task.Rate));
    return task;
}

void TellDifferences(const Options& options, const RecordingTask& task, Progress& progress) {
    if (options.Rate && std::abs(*options.Rate - task.Rate) > 1e-4 * task.Rate) {
        progress.Note(fmt::format("The rate is {:.6g} Hz, the nearest that the device has to {:.6g} Hz.", task.Rate,
                                  *options.Rate));
    }
    for (const Channel& channel : task.Channels) {
        if (!channel.Fitted()) progress.Warn(fmt::format("Channel {} is empty: its samples are 0.", channel.Number));
    }
}

}  // namespace corvane::recorder
