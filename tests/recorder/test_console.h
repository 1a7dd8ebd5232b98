// The console of the recorder's tests: it keeps what is said, and asks the test for a user's interrupt.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace corvane::recorder {

extern std::string Said;                // by messages
extern std::string StandardOutputText;  // everything else
extern bool ReadsRussian;               // the user
extern std::function<bool()> Interrupt;
extern std::vector<std::string>* Drawn;  // what a screen showed; null: standard output is no terminal
extern std::function<bool()> Reader;     // of standard output; false: it has gone

}  // namespace corvane::recorder
