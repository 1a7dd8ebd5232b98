#include "recorder/progress.h"

#include <fmt/format.h>
#include <algorithm>

#include "recorder/console.h"
#include "recorder/messages.h"
#include "recorder/options.h"
#include "recorder/text_columns.h"

namespace corvane::recorder {

namespace {

// From an hour on tenths are of no use, and many seconds are hard to read.
std::string Elapsed(double seconds) {
    const auto whole = static_cast<int64_t>(seconds);
    if (whole < 3600) return Say("{:.1f} s", seconds);
    return Say("{}:{:02}:{:02} h", whole / 3600, whole / 60 % 60, whole % 60);
}

}  // namespace

std::string ProgressLine(int64_t kadrs, int64_t wantedKadrs, double seconds, std::optional<int32_t> unreadKadrs,
                         size_t columns) {
    constexpr size_t Narrowest = 5, Widest = 20, Ends = 3;  // columns of a bar; its brackets and the space
    const bool endless = wantedKadrs == UntilInterrupted;
    std::string line =
        endless ? Say("{} kadrs", kadrs) : Say("{:3} %  {} of {} kadrs", kadrs * 100 / wantedKadrs, kadrs, wantedKadrs);
    line += "  " + Elapsed(seconds);
    if (unreadKadrs) line += "  " + Say("{} unread", *unreadKadrs);
    if (columns == 0) return line;
    const size_t length = ColumnsOf(line);
    if (!endless && length + Ends + Narrowest <= columns) {
        const size_t bar = std::min(Widest, columns - length - Ends);
        const auto done = static_cast<size_t>(kadrs * static_cast<int64_t>(bar) / wantedKadrs);
        line.insert(0, fmt::format("[{:<{}}] ", std::string(done, '#'), bar));
    }
    return ColumnsOf(line) > columns ? Fitted(line, columns) : line;
}

Progress::Progress(int64_t wantedKadrs, bool quiet)
    : WantedKadrs_(wantedKadrs), Quiet_(quiet), Terminal_(IsTerminal(stderr)), NextShow_(Start_ + Interval()) {}

void Progress::Show(int64_t kadrs, std::optional<int32_t> unreadKadrs) {
    const Clock::time_point now = Clock::now();
    if (Quiet_ || now < NextShow_) return;
    NextShow_ = now + Interval();
    const double seconds = std::chrono::duration<double>(now - Start_).count();
    // One character less than the width, so that no console wraps the line.
    const size_t columns = Terminal_ ? std::min<size_t>(TerminalSize(stderr).Columns, 80) - 1 : 0;
    const std::string line = ProgressLine(kadrs, WantedKadrs_, seconds, unreadKadrs, columns);
    // Spaces cover what a longer line left.
    WriteText(stderr, Terminal_ ? '\r' + Fitted(line, columns) : line + '\n');
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
