// A log for whoever looks for the cause of a problem. It is kept only where the user wants it: in the file Corvane.log
// of the user's profile folder, or in the one that the environment variable CORVANE_LOG names, when that file exists.
// When the log can't be written, or there is no memory for a line, the driver works on without it. A link is no log: it
// would let whoever may make links in the log's folder choose the file that is written to.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace corvane::platform {

// A longer log becomes FILE.old, in place of an earlier one, and a new one begins.
constexpr int64_t LogBytesMax = 1 << 20;

bool LogKept() noexcept;

// Adds a line with the time (UTC), the process and the thread, when a log is kept. Opens the file, writes and closes it
// again, so it is not for the recording thread.
void AppendToLog(std::string_view event) noexcept;

// The same for the text that `compose` returns. `compose` is called only when a log is kept, and may throw.
template <class Compose>
void LogEvent(Compose compose) noexcept {
    try {
        if (LogKept()) AppendToLog(compose());
    } catch (...) {
        // The work goes on without the line.
    }
}

// The event in one line of bounded length, whatever the texts in it hold.
std::string LogLine(std::string_view time, uint32_t process, uint32_t thread, std::string_view event);

}  // namespace corvane::platform
