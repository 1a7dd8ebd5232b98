// The console of the recorder's tests: it keeps what is said, and asks the test for a user's interrupt.
#pragma once

#include <functional>
#include <string>

namespace corvane::recorder {

extern std::string Said;                // on both streams
extern std::string StandardOutputText;  // on standard output alone
extern std::function<bool()> Interrupt;

}  // namespace corvane::recorder
