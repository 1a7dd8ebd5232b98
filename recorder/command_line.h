// One run of the recorder, from its arguments to its exit code.
#pragma once

#include <string>
#include <vector>

#include "recorder/failure.h"

namespace corvane::recorder {

// `arguments` without the program's name. Writes results to stdout and, when something fails, the reason to stderr.
ExitCode RunCommandLine(const std::vector<std::string>& arguments);

}  // namespace corvane::recorder
