// The console of the recorder's tests: it keeps what is said, and the user who interrupts does so from the start.
#pragma once

#include <string>

namespace corvane::recorder {

extern std::string Said;
extern bool Interrupted;

}  // namespace corvane::recorder
