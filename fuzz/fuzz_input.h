// Takes a fuzzer's bytes apart. Beyond their end everything is 0 or empty.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <span>
#include <string>
#include <string_view>

namespace corvane {

class FuzzInput {
public:
    FuzzInput(const uint8_t* data, size_t size) : Left_(data, size) {}

    bool Empty() const { return Left_.empty(); }
    uint8_t Byte() {
        uint8_t byte = 0;
        Fill(&byte, 1);
        return byte;
    }
    template <class Number>
    Number Any() {
        Number number = {};
        Fill(&number, sizeof number);
        return number;
    }
    // A length byte and so many characters.
    std::string Text() {
        std::string text(std::min<size_t>(Byte(), Left_.size()), '\0');
        Fill(text.data(), text.size());
        return text;
    }
    std::string Rest() {
        std::string text(Left_.begin(), Left_.end());
        Left_ = {};
        return text;
    }
    // A number as they go wrong: none, endless, too large or too small for a float, or any.
    double Double() {
        using Limits = std::numeric_limits<double>;
        constexpr double Special[] = {
            0,    -0.0,   1,     -10,    20.0 / 32768,  Limits::quiet_NaN(), Limits::infinity(),
            1e39, 3.4e38, 1e-46, 1e-300, Limits::max(), -Limits::infinity()};
        const uint8_t choice = Byte();
        return choice < std::size(Special) ? Special[choice] : Any<double>();
    }
    void Fill(void* destination, size_t size) {
        const size_t count = std::min(size, Left_.size());
        if (count > 0) std::memcpy(destination, Left_.data(), count);
        Left_ = Left_.subspan(count);
    }

private:
    std::span<const uint8_t> Left_;
};

// What must hold for every input; the fuzzer keeps the one for which it didn't.
inline void Require(bool holds, const char* what) {
    if (holds) return;
    std::fprintf(stderr, "violated: %s\n", what);
    std::abort();
}

// Every character below the blank.
constexpr std::string_view AnyControl = {
    "\0\1\2\3\4\5\6\7\b\t\n\v\f\r\16\17\20\21\22\23\24\25\26\27\30\31\32\33\34\35\36\37", ' '};

// Well-formed UTF-8 and nothing but `control` below the blank.
inline void RequireText(std::string_view text, std::string_view control, const char* what) {
    constexpr uint32_t Smallest[] = {0, 0x80, 0x800, 0x10000};
    for (size_t at = 0; at < text.size();) {
        const auto lead = static_cast<uint8_t>(text[at++]);
        const size_t more = lead < 0x80 ? 0 : lead < 0xE0 ? 1 : lead < 0xF0 ? 2 : 3;
        Require(lead >= ' ' || control.find(static_cast<char>(lead)) != control.npos, what);
        Require(lead < 0x80 || (lead >= 0xC2 && lead < 0xF5 && at + more <= text.size()), what);
        uint32_t point = more == 0 ? lead : lead & (0x3Fu >> more);
        for (size_t i = 0; i < more; i++, at++) {
            Require((static_cast<uint8_t>(text[at]) & 0xC0) == 0x80, what);
            point = point << 6 | (static_cast<uint8_t>(text[at]) & 0x3Fu);
        }
        Require(point >= Smallest[more] && point < 0x110000 && (point < 0xD800 || point > 0xDFFF), what);
    }
}

}  // namespace corvane
