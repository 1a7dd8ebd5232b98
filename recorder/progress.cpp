#include "recorder/progress.h"

#include <fmt/format.h>
#include <algorithm>

#include "recorder/console.h"
#include "recorder/options.h"

namespace corvane::recorder {

std::string ProgressLine(int64_t kadrs, int64_t wantedKadrs, double seconds, std::optional<int32_t> unreadKadrs,
                         bool bar) {
    constexpr int64_t BarWidth = 20;
    std::string line;
    if (wantedKadrs == UntilInterrupted) {
        line = fmt::format("{} kadrs", kadrs);
    } else {
        if (bar) {
            const int64_t done = kadrs * BarWidth / wantedKadrs;
            line = fmt::format("[{:<{}}] ", std::string(static_cast<size_t>(done), '#'), BarWidth);
        }
        line += fmt::format("{:3} %  {} of {} kadrs", kadrs * 100 / wantedKadrs, kadrs, wantedKadrs);
    }
    line += fmt::format("  {:.1f} s", seconds);
    return unreadKadrs ? fmt::format("{}  {} unread", line, *unreadKadrs) : line;
}

Progress::Progress(int64_t wantedKadrs, bool quiet)
    : WantedKadrs_(wantedKadrs), Quiet_(quiet), Terminal_(IsTerminal(stderr)), NextShow_(Start_ + Interval()) {}

void Progress::Show(int64_t kadrs, std::optional<int32_t> unreadKadrs) {
    const Clock::time_point now = Clock::now();
    if (Quiet_ || now < NextShow_) return;
    NextShow_ = now + Interval();
    const double seconds = std::chrono::duration<double>(now - Start_).count();
    const std::string line = ProgressLine(kadrs, WantedKadrs_, seconds, unreadKadrs, Terminal_);
    // Spaces cover what a longer line left. One character less than the width, so that no console wraps the line.
    WriteText(stderr, Terminal_ ? fmt::format("\r{:<79}", line) : line + '\n');
    LineOpen_ = Terminal_;
}

void Progress::Note(const std::string& text) {
    if (!Quiet_) Warn(text);
}

void Progress::Warn(const std::string& text) {
    EndLine();
    WriteText(stderr, text + '\n');
}

void Progress::EndLine() {
    if (LineOpen_) WriteText(stderr, "\n");
    LineOpen_ = false;
}

}  // namespace corvane::recorder
