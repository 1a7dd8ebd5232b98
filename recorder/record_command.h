// The command that records to a CSV file.
#pragma once

#include "recorder/failure.h"
#include "recorder/host_device.h"
#include "recorder/options.h"

namespace corvane::recorder {

// `device` has been opened. Returns how the recording ended; what keeps it from starting or from being written is
// thrown as Failure.
ExitCode Record(const Options& options, HostDevice& device);

}  // namespace corvane::recorder
