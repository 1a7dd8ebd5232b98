// How the recorder ends: its exit codes, and the one exception that carries a code and a message for the user.
#pragma once

#include <stdexcept>
#include <string>

namespace corvane::recorder {

// Listed for the user in the help text (options.cpp).
enum class ExitCode : int {
    Success = 0,
    Usage = 1,
    NoDriver = 2,
    NoDevice = 3,
    StartFailed = 4,
    Output = 5,
    Incomplete = 6,
    Input = 7,
    Interrupted = 130,
};

struct Failure : std::runtime_error {
    Failure(ExitCode code, const std::string& message) : std::runtime_error(message), Code(code) {}
    ExitCode Code;
};

}  // namespace corvane::recorder
