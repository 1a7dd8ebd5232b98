#include "recorder/text_columns.h"

#include <algorithm>
#include <span>
#include <utility>

#include "base/utf8.h"

namespace corvane::recorder {
namespace {

// Of East Asian scripts and pictures.
constexpr std::pair<char32_t, char32_t> Wide[] = {{0x1100, 0x115F}, {0x2E80, 0xA4CF},   {0xAC00, 0xD7A3},
                                                  {0xF900, 0xFAFF}, {0xFE30, 0xFE6F},   {0xFF00, 0xFF60},
                                                  {0xFFE0, 0xFFE6}, {0x1F300, 0x1FAFF}, {0x20000, 0x3FFFF}};
// Accents and marks that join the character before them.
constexpr std::pair<char32_t, char32_t> Joining[] = {{0x0300, 0x036F}, {0x200B, 0x200F}, {0x202A, 0x202E},
                                                     {0x2060, 0x206F}, {0x20D0, 0x20FF}, {0xFE00, 0xFE0F},
                                                     {0xFEFF, 0xFEFF}};

bool Among(std::span<const std::pair<char32_t, char32_t>> ranges, char32_t character) {
    return std::ranges::any_of(
        ranges, [&](const auto& range) { return character >= range.first && character <= range.second; });
}

bool Control(char32_t character) {
    return character < 0x20 || (character >= 0x7F && character < 0xA0);
}

size_t ColumnsOf(char32_t character) {
    return Among(Joining, character) ? 0 : Among(Wide, character) ? 2 : 1;
}

}  // namespace

size_t ColumnsOf(std::string_view text) {
    size_t columns = 0;
    while (!text.empty()) columns += ColumnsOf(TakeCharacter(text));
    return columns;
}

std::string Fitted(std::string_view text, size_t columns, bool right) {
    std::string fitted;
    size_t used = 0;
    while (!text.empty()) {
        const std::string_view before = text;
        const char32_t character = TakeCharacter(text);
        if (used + ColumnsOf(character) > columns) break;
        used += ColumnsOf(character);
        if (Control(character)) {
            fitted += '?';
        } else {
            fitted += before.substr(0, before.size() - text.size());
        }
    }
    fitted.insert(right ? 0 : fitted.size(), columns - used, ' ');
    return fitted;
}

}  // namespace corvane::recorder
