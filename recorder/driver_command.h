// The command that says which driver this machine's hosts load, and makes it another: the one beside this program, or
// the one with the simulated vendor libraries in the folder `simulator` there.
#pragma once

#include "recorder/failure.h"
#include "recorder/options.h"

namespace corvane::recorder {

// Throws Failure: ExitCode::Usage where there is no such driver, ExitCode::NoDriver when it can't be registered, and
// what to do.
ExitCode ManageDriver(const Options& options);

}  // namespace corvane::recorder
