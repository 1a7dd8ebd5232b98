#include "recorder/channel.h"

#include <cmath>

namespace corvane::recorder {

std::vector<Channel> ReadChannels(const HostDevice& device) {
    const std::vector<std::string> ranges = device.Ranges();
    std::vector<Channel> channels;
    for (int16_t number = 0; number < device.ChannelsCount(); number++) {
        Channel channel{number,
                        device.ChannelName(number),
                        "",
                        device.ChannelUnitName(number),
                        device.ChannelUnitScale(number),
                        device.ChannelUnitOffset(number)};
        const auto range = static_cast<size_t>(device.ChannelRange(number));
        if (range < ranges.size()) channel.Range = ranges[range];
        if (!std::isnormal(channel.Scale) || !std::isfinite(channel.Offset)) {
            channel.Unit = "code";
            channel.Scale = 1;
            channel.Offset = 0;
        }
        channels.push_back(std::move(channel));
    }
    return channels;
}

}  // namespace corvane::recorder
