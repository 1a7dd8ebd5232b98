// The device as the host sees it: a flat list of channels and their ranges. Channel n belongs to module n div 16, and
// to range n div 2. A recorded sample s of a channel stands for s / unit scale + unit offset in the range's unit.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "driver/model/module_record.h"

namespace corvane {

struct DeviceInfo {
    std::string DriverName;  // name that the settings location was derived from
    std::string ADCName;
    uint8_t Resolution = 15;  // bits
    int16_t RangesCount = 0;
    std::vector<std::string> Ranges;
    std::vector<std::string> UnitNames;
    std::vector<float> UnitScales;   // samples per unit
    std::vector<float> UnitOffsets;  // unit value of sample 0
    int16_t ChannelsCount = 0;
    std::vector<std::string> ChannelNames;
    std::vector<int16_t> ChannelRanges;
    std::string LastError;

    bool ValidChannel(int16_t index) const { return index >= 0 && index < ChannelsCount; }
    // Range of a valid channel.
    size_t RangeOf(int16_t index) const { return static_cast<size_t>(ChannelRanges[static_cast<size_t>(index)]); }
};

// The model before any module is open: 16 channels M1-1 to M8-2 with eight nameless ranges of ±10 units.
void InitDefaults(DeviceInfo& device);

// The model of one or two opened modules.
void BuildChannelModel(DeviceInfo& device, std::span<const ModuleRecord> modules);

// Latin name of the units that modules give in Cyrillic; any other text comes back unchanged.
std::string LatinUnitName(const std::string& unit);

// Sorts a channel table and leaves in it each channel below channelsCount once; channel 0 alone when nothing remains.
// Leaves the table as it is when there are no channels at all.
void NormalizeChannelTable(std::vector<int16_t>& table, int16_t channelsCount);

}  // namespace corvane
