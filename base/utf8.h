// Characters of a UTF-8 text, each of one byte or more.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace corvane {

inline bool StartsCharacter(char byte) {
    return (static_cast<uint8_t>(byte) & 0xC0) != 0x80;
}

inline size_t CharacterCount(std::string_view text) {
    return static_cast<size_t>(std::count_if(text.begin(), text.end(), StartsCharacter));
}

// Number of bytes of the first `count` characters, or of the whole text when it has fewer.
inline size_t LengthOfCharacters(std::string_view text, size_t count) {
    size_t length = 0;
    while (length < text.size() && (!StartsCharacter(text[length]) || count-- > 0)) length++;
    return length;
}

// Removes the first character of a text, which must not be empty, and returns it. Ill-formed bytes give some character;
// nothing fails.
inline char32_t TakeCharacter(std::string_view& text) {
    const auto lead = static_cast<uint8_t>(text.front());
    text.remove_prefix(1);
    const int following = lead < 0xC0 ? 0 : lead < 0xE0 ? 1 : lead < 0xF0 ? 2 : 3;
    char32_t character = following == 0 ? lead : lead & (0x3Fu >> following);
    for (int k = 0; k < following && !text.empty(); k++) {
        character = character << 6 | (static_cast<uint8_t>(text.front()) & 0x3Fu);
        text.remove_prefix(1);
    }
    return character;
}

}  // namespace corvane
