// Opening the crate that the user means, as all commands do first.
#pragma once

#include "recorder/host_device.h"
#include "recorder/options.h"

namespace corvane::recorder {

// Without a window unless the user has asked for one. Throws Failure: with ExitCode::NoDevice when there is no such
// crate, or several and none is named, and with ExitCode::Usage for what can't be asked of the driver.
void OpenDevice(const Options& options, HostDevice& device);

}  // namespace corvane::recorder
