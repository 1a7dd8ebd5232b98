#include "simulator/code_page.h"

#include <cstddef>

namespace ltrsim {

namespace {

char Encode(char32_t character) {
    if (character < 0x80) return static_cast<char>(character);
    if (character >= U'А' && character <= U'я') return static_cast<char>(character - U'А' + 0xC0);
    switch (character) {
        case U'Ё':
            return static_cast<char>(0xA8);
        case U'ё':
            return static_cast<char>(0xB8);
        case U'°':
        case U'±':
        case U'µ':  // these three have their Latin-1 codes
            return static_cast<char>(character);
        case U'μ':  // the Greek letter, which keyboards often give for the micro sign
            return static_cast<char>(0xB5);
        default:
            return '?';
    }
}

}  // namespace

std::string ToCodePage1251(std::string_view utf8) {
    std::string bytes;
    for (size_t at = 0; at < utf8.size();) {
        const unsigned char lead = static_cast<unsigned char>(utf8[at++]);
        const int following = lead < 0xC0 ? 0 : lead < 0xE0 ? 1 : lead < 0xF0 ? 2 : 3;
        char32_t character = following == 0 ? lead : lead & (0x3Fu >> following);
        for (int k = 0; k < following && at < utf8.size(); k++) {
            character = character << 6 | (static_cast<unsigned char>(utf8[at++]) & 0x3Fu);
        }
        bytes += Encode(character);
    }
    return bytes;
}

}  // namespace ltrsim
