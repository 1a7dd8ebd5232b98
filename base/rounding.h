// The one rounding rule of the driver: to the nearest integer, ties to even. NaN and infinities never reach a cast.
#pragma once

#include <cmath>
#include <cstdint>
#include <limits>

namespace corvane {

// Saturates at the limits of 32 bits; NaN gives the lowest value.
inline int32_t RoundToInt32(double value) {
    if (!(value > std::numeric_limits<int32_t>::min())) return std::numeric_limits<int32_t>::min();
    if (value >= std::numeric_limits<int32_t>::max()) return std::numeric_limits<int32_t>::max();
    return static_cast<int32_t>(std::lrint(value));
}

// Saturates at the limits of 16 bits; NaN gives the lowest value.
inline int16_t ClampToInt16(double value) {
    if (!(value > -32768.0)) return -32768;
    if (value >= 32767.0) return 32767;
    return static_cast<int16_t>(std::lrint(value));
}

}  // namespace corvane
