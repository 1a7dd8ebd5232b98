// Takes a fuzzer's bytes apart. Beyond their end everything is 0 or empty.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <span>
#include <string>

namespace corvane {

class FuzzInput {
public:
    FuzzInput(const uint8_t* data, size_t size) : Left_(data, size) {}

    bool Empty() const { return Left_.empty(); }
    uint8_t Byte() {
        if (Left_.empty()) return 0;
        const uint8_t byte = Left_.front();
        Left_ = Left_.subspan(1);
        return byte;
    }
    // A length byte and so many characters.
    std::string Text() {
        const size_t length = std::min<size_t>(Byte(), Left_.size());
        std::string text(Left_.begin(), Left_.begin() + static_cast<std::ptrdiff_t>(length));
        Left_ = Left_.subspan(length);
        return text;
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

}  // namespace corvane
