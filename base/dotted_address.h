// IPv4 addresses as 32-bit numbers, the most significant byte first, and as dotted texts.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace corvane {

constexpr uint32_t ThisMachine = 0x7F000001;  // 127.0.0.1

// Decimal values of the four bytes, the most significant first, joined by dots.
inline std::string DottedText(uint32_t value) {
    return std::to_string(value >> 24) + "." + std::to_string(value >> 16 & 255) + "." +
           std::to_string(value >> 8 & 255) + "." + std::to_string(value & 255);
}

constexpr size_t OctetDigits = 3;  // an octet has no more

// A number from 0 to 255 in the digits 0 to 9, with any number of leading zeros. Everything else that a locale may
// accept as a number (signs, fractions, digits of other scripts) is refused.
inline std::optional<uint8_t> ParseOctet(std::string_view text) {
    if (text.empty()) return std::nullopt;
    int value = 0;
    for (const char character : text) {
        if (character < '0' || character > '9') return std::nullopt;
        value = value * 10 + (character - '0');
        if (value > 255) return std::nullopt;
    }
    return static_cast<uint8_t>(value);
}

}  // namespace corvane
