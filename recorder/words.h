// Small things that texts for the user are made of.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <string_view>

#include "recorder/messages.h"

namespace corvane::recorder {

// What is counted: in English for 1 and for more, in Russian for 1, 2 and 5.
struct Noun {
    std::string_view English[2];
    std::string_view Russian[3];
};
inline constexpr Noun KadrNoun = {{"kadr", "kadrs"}, {"кадр", "кадра", "кадров"}};
inline constexpr Noun RowNoun = {{"row", "rows"}, {"строка", "строки", "строк"}};
inline constexpr Noun ChannelNoun = {{"channel", "channels"}, {"канал", "канала", "каналов"}};
inline constexpr Noun MoreChannelsNoun = {{"more channel", "more channels"}, {"канал", "канала", "каналов"}};
inline constexpr Noun GapNoun = {{"gap", "gaps"}, {"пропуск", "пропуска", "пропусков"}};
inline constexpr Noun MoreGapsNoun = {{"more gap", "more gaps"}, {"пропуск", "пропуска", "пропусков"}};

// "1 channel", "2 channels".
std::string Counted(int64_t count, const Noun& what, Language language = UserLanguage());

// Local time with its distance from UTC: 2025-03-09T14:05:00.250+03:00.
std::string Iso8601(std::chrono::system_clock::time_point time);

}  // namespace corvane::recorder
