#include "recorder/recording.h"

#include <fmt/format.h>

namespace corvane::recorder {

std::vector<std::string> Recording::Lines() const {
    std::vector<std::string> lines = {"Device: " + Device.Device(Language::English)};
    const std::vector<std::string> device = Device.Lines(Language::English);
    lines.insert(lines.end(), device.begin(), device.end());
    lines.push_back("Start: " + Start);
    lines.push_back(fmt::format("Rate: {:.6g} Hz", Task.Rate));
    lines.push_back(fmt::format("Channels: {}", Task.Channels.size()));
    lines.push_back("Kadrs wanted: " + (Task.WantedKadrs == UntilInterrupted ? std::string("until interrupted")
                                                                             : std::to_string(Task.WantedKadrs)));
    if (Part > 0) lines.push_back(fmt::format("Part: {}, from kadr {}", Part, FirstKadr));
    if (!Note.empty()) lines.push_back("Note: " + Note);
    return lines;
}

}  // namespace corvane::recorder
