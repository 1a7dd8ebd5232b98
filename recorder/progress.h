// What a running recording tells the user, on stderr: one line that is drawn over and over on a terminal, a plain line
// every few seconds in a log. Warnings go through here too, so that they don't tear the line.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

namespace corvane::recorder {

// Percent and counts as one line, without percent when they are wanted until the user interrupts. At most `columns`
// long: where that is too little the bar is shorter, then what stands behind is cut off; 0: without a bar and an end.
std::string ProgressLine(int64_t kadrs, int64_t wantedKadrs, double seconds, std::optional<int32_t> unreadKadrs,
                         size_t columns);

class Progress {
public:
    Progress(int64_t wantedKadrs, bool quiet);
    ~Progress() { EndLine(); }
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    // Draws the line when the last time is long enough ago. `unreadKadrs` are those that wait in the driver's ring.
    void Show(int64_t kadrs, std::optional<int32_t> unreadKadrs = std::nullopt);
    // A line that stays. Silent when quiet.
    void Note(const std::string& text);
    // A line that stays, quiet or not.
    void Warn(const std::string& text);
    void EndLine();

private:
    using Clock = std::chrono::steady_clock;

    Clock::duration Interval() const { return std::chrono::milliseconds(Terminal_ ? 200 : 2000); }

    int64_t WantedKadrs_;
    bool Quiet_;
    bool Terminal_;
    bool LineOpen_ = false;
    Clock::time_point Start_ = Clock::now();
    Clock::time_point NextShow_;
};

}  // namespace corvane::recorder
