// The command that shows the device and its channels.
#pragma once

#include <string>

#include "recorder/host_device.h"

namespace corvane::recorder {

// What the opened device is, and a table of its channels.
std::string ListDevice(HostDevice& device);

}  // namespace corvane::recorder
