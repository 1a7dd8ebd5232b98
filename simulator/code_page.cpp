#include "simulator/code_page.h"

#include <cstddef>
#include "base/utf8.h"

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
    while (!utf8.empty()) bytes += Encode(corvane::TakeCharacter(utf8));
    return bytes;
}

}  // namespace ltrsim
