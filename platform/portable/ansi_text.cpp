// The portable build's ANSI code page is 1251, that of a Russian Windows, where these modules are mostly used.
#include "platform/ansi_text.h"

#include <array>
#include <cstdint>

#include "base/utf8.h"

namespace corvane::platform {

namespace {

// Code points of the bytes 0x80 to 0xBF; 0xC0 to 0xFF are U+0410 to U+044F in order.
constexpr std::array<uint16_t, 64> UpperHalf = {
    0x0402, 0x0403, 0x201A, 0x0453, 0x201E, 0x2026, 0x2020, 0x2021, 0x20AC, 0x2030, 0x0409, 0x2039, 0x040A,
    0x040C, 0x040B, 0x040F, 0x0452, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014, 0x0098, 0x2122,
    0x0459, 0x203A, 0x045A, 0x045C, 0x045B, 0x045F, 0x00A0, 0x040E, 0x045E, 0x0408, 0x00A4, 0x0490, 0x00A6,
    0x00A7, 0x0401, 0x00A9, 0x0404, 0x00AB, 0x00AC, 0x00AD, 0x00AE, 0x0407, 0x00B0, 0x00B1, 0x0406, 0x0456,
    0x0491, 0x00B5, 0x00B6, 0x00B7, 0x0451, 0x2116, 0x0454, 0x00BB, 0x0458, 0x0405, 0x0455, 0x0457};

uint32_t CodePoint(uint8_t byte) {
    if (byte < 0x80) return byte;
    return byte < 0xC0 ? UpperHalf[byte - 0x80u] : 0x0410u + (byte - 0xC0u);
}

void AppendUtf8(std::string& text, uint32_t point) {
    if (point < 0x80) {
        text += static_cast<char>(point);
    } else if (point < 0x800) {
        text += static_cast<char>(0xC0 | point >> 6);
        text += static_cast<char>(0x80 | (point & 0x3F));
    } else {
        text += static_cast<char>(0xE0 | point >> 12);
        text += static_cast<char>(0x80 | (point >> 6 & 0x3F));
        text += static_cast<char>(0x80 | (point & 0x3F));
    }
}

char AnsiByte(uint32_t point) {
    for (int byte = 0; byte < 256; byte++) {
        if (CodePoint(static_cast<uint8_t>(byte)) == point) return static_cast<char>(byte);
    }
    return '?';
}

}  // namespace

std::string FromAnsi(std::string_view ansi) {
    std::string text;
    for (const char byte : ansi) AppendUtf8(text, CodePoint(static_cast<uint8_t>(byte)));
    return text;
}

std::string ToAnsi(std::string_view utf8) {
    std::string text;
    while (!utf8.empty()) text += AnsiByte(TakeCharacter(utf8));
    return text;
}

std::string DecimalSeparator() {
    return ".";
}

}  // namespace corvane::platform
