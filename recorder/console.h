// What the recorder asks of the system it runs on, with texts and file names in UTF-8: arguments, the terminal, Ctrl+C
// and opening files. win32/ or posix/ is linked in, in the tests a console that remembers.
#pragma once

#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

namespace corvane::recorder {

// The arguments without the program's name.
std::vector<std::string> CommandLineArguments(int count, const char* const* values);

// `stream` is stdout or stderr. Text for a terminal appears at once.
void WriteText(std::FILE* stream, std::string_view text);
bool IsTerminal(std::FILE* stream);

// From here on the first Ctrl+C (on Windows closing the console window, too) only makes InterruptRequested true, so
// that a recording can end in order; a second one ends the program at once.
void WatchInterrupt();
bool InterruptRequested();

// Creates or empties the file, for binary writing without the library's own buffer. Null: see errno.
std::FILE* OpenForWriting(const std::string& path);

}  // namespace corvane::recorder
