// What a monitor shows, as lines for a terminal of any size and as a line of JSON.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "recorder/live_values.h"

namespace corvane::recorder {

struct MonitorState {
    std::string Device;
    std::string Crate;  // serial number
    double Rate = 0;    // Hz
    std::string Time;   // local, in ISO 8601
    int64_t Kadrs = 0;
    size_t Gaps = 0;
    int64_t Missing = 0;  // kadrs in these gaps
    std::string Trouble;  // what keeps data from coming, in the user's language; empty: nothing
    std::vector<LiveChannel> Channels;
};

// No line is wider than `columns`, and there are no more than `rows`: what has no room is left out, and channels that
// are left out are counted.
std::vector<std::string> MonitorPicture(const MonitorState& state, size_t columns, size_t rows);

// With a line end.
std::string MonitorJson(const MonitorState& state);

}  // namespace corvane::recorder
