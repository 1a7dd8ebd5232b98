// A crate slot as the user reads it.
#pragma once

#include <cstdint>
#include <string>

namespace corvane {

// Two digits, so that slots line up and sort.
inline std::string SlotText(int32_t slot) {
    return (slot >= 0 && slot < 10 ? "0" : "") + std::to_string(slot);
}

}  // namespace corvane
