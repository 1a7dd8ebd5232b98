// The crate that the opened modules sit in.
#pragma once

#include <cstdint>
#include <string>

namespace corvane {

struct CrateInfo {
    std::string Address;   // dotted address of the LTR server
    uint32_t NetAddr = 0;  // the same as a number
    std::string TypeName;
    std::string Serial;
    std::string Interface;
    std::string Info;           // description shown to the user
    int16_t MarkSTARTMode = 0;  // 0 to 7: the entries of the setup dialog's list
};

}  // namespace corvane
