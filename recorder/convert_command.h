// ltr27rec convert: a recording in a NumPy array as CSV.
#pragma once

#include "recorder/failure.h"
#include "recorder/options.h"

namespace corvane::recorder {

// Writes the text that recording to CSV would have written, or the part of it that the user asked for, in memory that
// does not grow with the recording. Throws Failure: with ExitCode::Input for files that make no sense.
ExitCode Convert(const Options& options);

}  // namespace corvane::recorder
