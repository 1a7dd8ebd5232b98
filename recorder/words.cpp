#include "recorder/words.h"

#include <fmt/chrono.h>
#include <fmt/format.h>
#include <cstdlib>

namespace corvane::recorder {

std::string Counted(int64_t count, const Noun& what, Language language) {
    if (language == Language::English) return fmt::format("{} {}", count, what.English[count == 1 ? 0 : 1]);
    const int64_t last = count % 10;
    const bool teens = count / 10 % 10 == 1;  // 11 to 14 are like 5
    return fmt::format("{} {}", count, what.Russian[teens || last == 0 || last > 4 ? 2 : last == 1 ? 0 : 1]);
}

std::string Iso8601(std::chrono::system_clock::time_point time) {
    const auto whole = std::chrono::floor<std::chrono::seconds>(time);
    const auto milliseconds = std::chrono::duration_cast<std::chrono::milliseconds>(time - whole).count();
    const std::time_t seconds = std::chrono::system_clock::to_time_t(whole);
    const std::tm local = fmt::localtime(seconds);
    std::tm utc = fmt::gmtime(seconds);
    utc.tm_isdst = local.tm_isdst;
    const auto minutes = static_cast<int>(std::difftime(seconds, std::mktime(&utc)) / 60);
    return fmt::format("{:%Y-%m-%dT%H:%M:%S}.{:03}{}{:02}:{:02}", local, milliseconds, minutes < 0 ? '-' : '+',
                       std::abs(minutes) / 60, std::abs(minutes) % 60);
}

}  // namespace corvane::recorder
