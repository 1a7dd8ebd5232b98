#include "recorder/fixed_point.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstring>

namespace corvane::recorder {
namespace {

constexpr double UnitsMax = 2147483647;  // what fits 32 bits takes the short way
// So close to the middle between two units the product, wrong by at most 2^-22 units, can't tell which one is nearer.
constexpr double TieMargin = 1.0 / (1 << 20);

constexpr std::array<char, 200> MakePairs() {
    std::array<char, 200> pairs{};
    for (size_t i = 0; i < 100; i++) {
        pairs[2 * i] = static_cast<char>('0' + i / 10);
        pairs[2 * i + 1] = static_cast<char>('0' + i % 10);
    }
    return pairs;
}
constexpr std::array<char, 200> Pairs = MakePairs();  // "00" to "99"

// Every number below 1000 as text, without zeros before it, and the length of the text.
struct Short {
    char Text[3];
    uint8_t Length;
};
constexpr std::array<Short, 1000> MakeShorts() {
    std::array<Short, 1000> shorts{};
    for (uint32_t i = 0; i < 1000; i++) {
        const uint32_t digits[] = {i / 100, i / 10 % 10, i % 10};
        const uint32_t zeros = i < 10 ? 2 : i < 100 ? 1 : 0;
        for (uint32_t k = zeros; k < 3; k++) shorts[i].Text[k - zeros] = static_cast<char>('0' + digits[k]);
        shorts[i].Length = static_cast<uint8_t>(3 - zeros);
    }
    return shorts;
}
constexpr std::array<Short, 1000> Shorts = MakeShorts();

int DigitsOf(uint32_t number) {
    int count = 1;
    for (; number >= 100; number /= 100) count += 2;
    return count + (number >= 10 ? 1 : 0);
}

}  // namespace

char* WriteDigits(char* text, uint32_t number, int count) {
    char* place = text + count;
    if (count >= 4) {
        const uint32_t upper = number / 10000;
        const uint32_t four = number - upper * 10000;
        const uint32_t high = four / 100;
        std::memcpy(place - 4, &Pairs[2 * size_t{high}], 2);
        std::memcpy(place - 2, &Pairs[2 * size_t{four - high * 100}], 2);
        number = upper;
        place -= 4;
    }
    for (; place - text > 1; place -= 2) {
        const uint32_t upper = number / 100;
        std::memcpy(place - 2, &Pairs[2 * size_t{number - upper * 100}], 2);
        number = upper;
    }
    if (place > text) *text = static_cast<char>('0' + number);
    return text + count;
}

char* WriteDigits(char* text, uint32_t number) {
    if (number >= Shorts.size()) return WriteDigits(text, number, DigitsOf(number));
    std::memcpy(text, Shorts[number].Text, sizeof Short::Text);
    return text + Shorts[number].Length;
}

int FixedPoint::DecimalsFor(double scale) {
    return std::clamp(static_cast<int>(std::ceil(std::log10(std::abs(scale)) - 1e-9)) + 1, 0, DecimalsMax);
}

FixedPoint::FixedPoint(int decimals, char point)
    : Decimals_(decimals),
      Point_(point),
      UnitsPerOne_(std::pow(10.0, decimals)),
      WholeUnits_(static_cast<uint32_t>(std::min<double>(UnitsPerOne_, UINT32_MAX))) {}

char* FixedPoint::Write(char* text, double value) const {
    const double magnitude = std::abs(value);
    const double exact = magnitude * UnitsPerOne_;
    if (!(exact < UnitsMax)) return WriteExactly(text, value);
    const auto below = static_cast<int32_t>(exact);
    const double rest = exact - below;
    if (std::abs(rest - 0.5) < TieMargin) return WriteExactly(text, value);
    const auto units = static_cast<uint32_t>(below + (rest > 0.5 ? 1 : 0));
    *text = '-';
    text += value < 0 && units != 0 ? 1 : 0;
    if (Decimals_ == 0) return WriteDigits(text, units);
    // A product costs less than a division; rounding up can reach the next whole number.
    auto whole = static_cast<uint32_t>(static_cast<int32_t>(magnitude));
    uint32_t decimals = units - whole * WholeUnits_;
    if (decimals >= WholeUnits_) whole++, decimals = 0;
    text = WriteDigits(text, whole);
    *text++ = Point_;
    return WriteDigits(text, decimals, Decimals_);
}

size_t FixedPoint::LengthBetween(double one, double other) const {
    char text[LengthMax];
    const auto length = std::max(Write(text, one) - text, Write(text, other) - text);
    return static_cast<size_t>(length) + 1;
}

char* FixedPoint::WriteExactly(char* text, double value) const {
    if (std::abs(value) < 0.5 * std::pow(10.0, -Decimals_)) value = 0;
    // The recorder has the C locale. std::to_chars would make it a tenth larger for what hardly ever runs.
    const int length = std::snprintf(text, LengthMax, "%.*f", Decimals_, value);
    if (length < 0 || static_cast<size_t>(length) >= LengthMax) return text;
    std::replace(text, text + length, '.', Point_);
    return text + length;
}

}  // namespace corvane::recorder
