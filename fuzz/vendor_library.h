// The two vendor libraries as a server that may be anybody's makes them answer. Linked in place of the simulator.
#pragma once

#include <optional>
#include <vector>

#include "fuzz/fuzz_input.h"

namespace corvane {

// Where the answers come from. Without an input every call succeeds: the server has one crate, with an LTR27 in each
// slot whose bit is set, all eight mezzanines fitted.
struct VendorAnswers {
    FuzzInput* Crates = nullptr;   // of the functions for servers and crates
    FuzzInput* Modules = nullptr;  // of the functions that describe a module
    FuzzInput* Stream = nullptr;   // of those that record
    uint16_t Slots = 0;
    int32_t Connections = 0;  // opened and not closed
};

extern VendorAnswers Answers;

}  // namespace corvane
