// ltr27rec monitor: the values of all channels while they come.
#pragma once

#include "recorder/failure.h"
#include "recorder/host_device.h"
#include "recorder/options.h"

namespace corvane::recorder {

// `device` has been opened. Returns how it ended: interrupted by the user, or after one look where only that was asked
// for. Throws Failure, with ExitCode::Usage where the picture has no terminal.
ExitCode Monitor(const Options& options, HostDevice& device);

}  // namespace corvane::recorder
