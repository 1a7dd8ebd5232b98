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

constexpr size_t OctetDigits = 3;  // of an octet as it is written, at most

// A number 0 to 255 in plain digits, however many zeros lead it. What else a locale takes for a number (signs,
// fractions, digits of other scripts) has no place in an address.
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
