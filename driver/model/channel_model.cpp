#include "driver/model/channel_model.h"

#include <clocale>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>

#include "base/two_digits.h"
#include "platform/ansi_text.h"

namespace corvane {

namespace {

constexpr float DefaultUnitScale = 32768.0f / 20;  // samples per unit of a ±10 range

void Resize(DeviceInfo& device, size_t ranges) {
    device.RangesCount = static_cast<int16_t>(ranges);
    device.Ranges.assign(ranges, {});
    device.UnitNames.assign(ranges, {});
    device.UnitScales.assign(ranges, DefaultUnitScale);
    device.UnitOffsets.assign(ranges, 0);
    device.ChannelsCount = static_cast<int16_t>(2 * ranges);
    device.ChannelNames.assign(2 * ranges, {});
    device.ChannelRanges.resize(2 * ranges);
    for (size_t channel = 0; channel < 2 * ranges; channel++) {
        device.ChannelRanges[channel] = static_cast<int16_t>(channel / 2);
    }
}

// The shortest text that reads back as the same number, with the user's decimal separator. Very small and very large
// numbers have an exponent. std::to_chars would say it in one call, and make the component larger by a quarter.
std::string NumberText(float number) {
    if (number == 0) return "0";  // also for a negative zero
    char digits[64];
    if (std::abs(number) < 1e7f && number == std::trunc(number)) {
        std::snprintf(digits, sizeof digits, "%.0f", double{number});
    } else {
        int count = 1;
        do {
            std::snprintf(digits, sizeof digits, "%.*g", count, double{number});
        } while (std::strtof(digits, nullptr) != number && ++count <= std::numeric_limits<float>::max_digits10);
    }
    std::string text = digits;
    const std::string_view point = std::localeconv()->decimal_point;  // the host may have set a locale
    const size_t at = text.find(point);
    if (at != std::string::npos) text.replace(at, point.size(), platform::DecimalSeparator());
    return text;
}

std::string RangeText(const MezzanineInfo& mezzanine) {
    const float top = mezzanine.Top;
    const float bottom = mezzanine.Bottom;
    std::string limits;
    if (-bottom == top) {
        limits = "±" + NumberText(top);
    } else if (bottom < 0 && top > 0) {
        limits = NumberText(bottom) + "…+" + NumberText(top);
    } else {
        limits = NumberText(bottom) + "…" + NumberText(top);
    }
    return limits + " " + mezzanine.Unit;
}

void DescribeRange(DeviceInfo& device, size_t range, const MezzanineInfo& mezzanine) {
    device.UnitNames[range] = LatinUnitName(mezzanine.Unit);
    const float span = mezzanine.Top - mezzanine.Bottom;
    const float scale = 32768 / span, offset = (mezzanine.Top + mezzanine.Bottom) / 2;
    // A mezzanine whose memory holds no usable coefficients is shown by its name, with the default scale.
    if (!std::isfinite(span) || !std::isfinite(scale) || !std::isfinite(offset)) {
        device.Ranges[range] = mezzanine.Name;
        return;
    }
    device.Ranges[range] = RangeText(mezzanine);
    device.UnitScales[range] = scale;
    device.UnitOffsets[range] = offset;
}

}  // namespace

void InitDefaults(DeviceInfo& device) {
    Resize(device, MezzaninePositions);
    for (size_t position = 0; position < MezzaninePositions; position++) {
        const std::string name = "M" + std::to_string(position + 1);
        device.Ranges[position] = name;
        device.ChannelNames[2 * position] = name + "-1";
        device.ChannelNames[2 * position + 1] = name + "-2";
    }
}

void BuildChannelModel(DeviceInfo& device, std::span<const ModuleRecord> modules) {
    DeviceInfo built = device;  // memory may run out before the model is whole
    Resize(built, MezzaninePositions * modules.size());
    for (size_t range = 0; range < built.Ranges.size(); range++) {
        const ModuleRecord& module = modules[range / MezzaninePositions];
        const size_t position = range % MezzaninePositions;
        const MezzanineInfo& mezzanine = module.Mezzanines[position];
        if (mezzanine.Name.empty()) {
            built.Ranges[range] = "Empty";
            built.ChannelNames[2 * range] = built.ChannelNames[2 * range + 1] = "Empty";
            continue;
        }
        const std::string place = TwoDigits(module.Slot) + "_" + std::to_string(position + 1);
        built.ChannelNames[2 * range] = place + "-1_" + mezzanine.Name;
        built.ChannelNames[2 * range + 1] = place + "-2_" + mezzanine.Name;
        DescribeRange(built, range, mezzanine);
    }
    device = std::move(built);
}

std::string LatinUnitName(const std::string& unit) {
    constexpr const char* Names[][2] = {{"В", "V"}, {"мВ", "mV"}, {"А", "A"}, {"мА", "mA"}, {"Ом", "Ohm"}};
    for (const auto& [cyrillic, latin] : Names) {
        if (unit == cyrillic) return latin;
    }
    return unit;
}

void NormalizeChannelTable(std::vector<int16_t>& table, int16_t channelsCount) {
    if (channelsCount < 1) return;
    std::vector<bool> marked(static_cast<size_t>(channelsCount));
    for (const int16_t channel : table) {
        if (channel >= 0 && channel < channelsCount) marked[static_cast<size_t>(channel)] = true;
    }
    table.clear();
    for (int16_t channel = 0; channel < channelsCount; channel++) {
        if (marked[static_cast<size_t>(channel)]) table.push_back(channel);
    }
    if (table.empty()) table.push_back(0);
}

}  // namespace corvane
