// One channel as the driver describes it, and the physical values of its samples.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "recorder/host_device.h"

namespace corvane::recorder {

struct Channel {
    int16_t Number = 0;
    std::string Name;
    std::string Range;
    std::string Unit;
    double Scale = 1;   // samples per unit
    double Offset = 0;  // unit value of sample 0

    bool Fitted() const { return Name != "Empty"; }
    double Physical(double sample) const { return sample / Scale + Offset; }
};

// All channels of the device. A scale of 0 or infinity makes no values; such a channel is given in samples,
// with the unit "code".
std::vector<Channel> ReadChannels(const HostDevice& device);

}  // namespace corvane::recorder
