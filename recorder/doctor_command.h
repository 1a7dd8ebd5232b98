// The command that walks the road from the driver's registration to the first samples, and says at each step what
// works, and what to do about the first thing that doesn't.
#pragma once

#include "recorder/failure.h"
#include "recorder/options.h"

namespace corvane::recorder {

// Success only when a recording would work; else the code that it would end with.
ExitCode Examine(const Options& options);

}  // namespace corvane::recorder
