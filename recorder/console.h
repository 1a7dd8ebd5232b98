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

// Sets an environment variable of this process, as the driver in it will see it.
void SetVariable(const std::string& name, const std::u8string& value);

// `stream` is stdout or stderr. The text appears at once. False: it could not be written.
bool WriteText(std::FILE* stream, std::string_view text);
bool IsTerminal(std::FILE* stream);
// Whether Russian is the language of this user's texts.
bool UserReadsRussian();

struct ScreenSize {
    size_t Columns = 80;
    size_t Rows = 24;
};
// Of the terminal as it is now; never without a column or row.
ScreenSize TerminalSize(std::FILE* stream);

// From here on the first Ctrl+C, or closing the terminal's window, only makes InterruptRequested true, so that a
// recording can end in order; a second Ctrl+C ends the program at once.
void WatchInterrupt();
bool InterruptRequested();

// The whole terminal of standard output, for lines that are drawn over and over. What stood there before comes back
// when this goes, and when a second Ctrl+C ends the program.
class Screen {
public:
    Screen();
    ~Screen();
    Screen(const Screen&) = delete;
    Screen& operator=(const Screen&) = delete;

    // Lines for a terminal of this size, from the top. False: they could not be drawn.
    static bool Draw(const std::vector<std::string>& lines, ScreenSize size);
};

}  // namespace corvane::recorder
