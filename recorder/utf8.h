// Characters of a UTF-8 text, each of one byte or more.
#pragma once

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace corvane::recorder {

inline bool StartsCharacter(char byte) {
    return (byte & 0xC0) != 0x80;
}

inline size_t CharacterCount(std::string_view text) {
    return static_cast<size_t>(std::count_if(text.begin(), text.end(), StartsCharacter));
}

// Bytes of the first `count` characters; of the whole text when it has no more.
inline size_t LengthOfCharacters(std::string_view text, size_t count) {
    size_t length = 0;
    while (length < text.size() && (!StartsCharacter(text[length]) || count-- > 0)) length++;
    return length;
}

}  // namespace corvane::recorder
