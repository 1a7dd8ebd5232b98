// Where data comes from, in lines for the user: the list, the head of a CSV file and a plot all say the same.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "recorder/channel.h"
#include "recorder/host_device.h"

namespace corvane::recorder {

struct DeviceSummary {
    std::string Device;              // its name, with SIMULATED where the vendor libraries are no real ones
    std::vector<std::string> Lines;  // server, crate, modules, START mark, driver and libraries, each "What: ..."
};

// Of an opened device.
DeviceSummary SummaryOf(const HostDevice& device);

// What is wrong with the units of these channels, and how to mend it; empty: nothing.
std::string UnitsAdvice(std::span<const Channel> channels);

}  // namespace corvane::recorder
