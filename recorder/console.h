// What the recorder asks of the system it runs on, with texts in UTF-8: arguments, the terminal and Ctrl+C. win32/ or
// posix/ is linked in, in the tests a console that remembers.
#pragma once

#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

namespace corvane::recorder {

// The arguments without the program's name.
std::vector<std::string> CommandLineArguments(int count, const char* const* values);

// `stream` is stdout or stderr. The text appears at once. False: it could not be written.
bool WriteText(std::FILE* stream, std::string_view text);
bool IsTerminal(std::FILE* stream);
// Whether Russian is the language of this user's texts.
bool UserReadsRussian();

// From here on the first Ctrl+C, or closing the terminal's window, only makes InterruptRequested true, so that a
// recording can end in order; a second Ctrl+C ends the program at once.
void WatchInterrupt();
bool InterruptRequested();

}  // namespace corvane::recorder
