// Small things that texts for the user are made of.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>

namespace corvane::recorder {

// "1 channel", "2 channels".
std::string Counted(int64_t count, const std::string& what);

// Local time with its distance from UTC: 2025-03-09T14:05:00.250+03:00.
std::string Iso8601(std::chrono::system_clock::time_point time);

}  // namespace corvane::recorder
