// The command that shows the device and its channels.
#pragma once

#include <string>

#include "recorder/host_device.h"

namespace corvane::recorder {

// Opens the crate, as all commands do first. Throws Failure with ExitCode::NoDevice when there is none.
void OpenDevice(HostDevice& device);

// The device and a table of its channels, as text.
std::string ListDevice(HostDevice& device);

}  // namespace corvane::recorder
