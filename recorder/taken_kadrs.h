// Kadrs as they were taken from the driver, and which of their samples were measured.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "recorder/channel.h"

namespace corvane::recorder {

constexpr int ModuleChannels = 16;  // channel numbers of one module
constexpr int ModulesMax = 2;

struct TakenKadrs {
    std::span<const int16_t> Samples;  // whole kadrs, one after another
    std::span<const uint8_t> Missing;  // of each kadr, the bits of what was not measured; empty: all counts as measured

    // `count` of them from `first` on; `channels`: samples of a kadr.
    TakenKadrs Part(size_t first, size_t count, size_t channels) const {
        return {Samples.subspan(first * channels, count * channels),
                Missing.empty() ? Missing : Missing.subspan(first, count)};
    }
};

// What is missing in a kadr is missing for all channels of one module, so each module has a bit.
constexpr uint8_t MissingBit(int32_t module) {
    return static_cast<uint8_t>(1 << module);
}

// Missing in every kadr: what belongs to channels without a mezzanine.
constexpr uint8_t NeverMeasured = 0x80;

// The bit that says of each channel that its sample is missing.
inline std::vector<uint8_t> MissingBits(std::span<const Channel> channels) {
    std::vector<uint8_t> bits;
    for (const Channel& channel : channels) {
        bits.push_back(channel.Fitted() ? MissingBit(channel.Number / ModuleChannels) : NeverMeasured);
    }
    return bits;
}

}  // namespace corvane::recorder
