// ltr27rec report: a recording as one HTML page to look into.
#pragma once

#include "recorder/failure.h"
#include "recorder/options.h"

namespace corvane::recorder {

// Reads the recording once, in memory that does not grow with it. Throws Failure: with ExitCode::Input for files that
// make no sense.
ExitCode MakeReport(const Options& options);

}  // namespace corvane::recorder
