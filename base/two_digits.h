// Numbers for lists and columns.
#pragma once

#include <cstdint>
#include <string>

namespace corvane {

// At least two digits, so that slots line up and sort.
inline std::string TwoDigits(int32_t number) {
    return (number >= 0 && number < 10 ? "0" : "") + std::to_string(number);
}

}  // namespace corvane
