// The command that opens the driver's setup dialog.
#pragma once

#include "recorder/host_device.h"

namespace corvane::recorder {

// Opens the crate first, so that the dialog has something to show. Returns when the user has closed it. Where the
// driver has no windows, throws Failure with ExitCode::Usage, and else as OpenDevice does.
void ShowSettings(HostDevice& device);

}  // namespace corvane::recorder
