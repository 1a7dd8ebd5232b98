#include "simulator/error_codes.h"

#include <algorithm>
#include <array>
#include <iterator>

namespace ltrsim {

namespace {

// Index: minus the code.
constexpr const char* Texts[] = {
    "No error",
    "Wrong argument",
    "Wrong size of the module record",
    "No LTR server answers at this address",
    "The LTR server has no crate with this serial number",
    "There is no module in this slot",
    "The module in this slot is no LTR27",
    "The connection is not open",
    "The connection to the crate or module is lost",
    "The module is converting",
    "The record is in use by another thread",
    "The data words are out of order",
    "Wrong port of the LTR server",
    "The simulator's scenario file is broken",
    "Internal error of the simulator",
    "The record was not initialised",
};

constexpr int32_t NullTextsBelow = -9999;

constexpr std::array<std::string_view, 18> FaultableCalls = {
    "LTR27_Init",          "LTR27_Open",           "LTR27_Close",      "LTR27_GetConfig",
    "LTR27_SetConfig",     "LTR27_ADCStart",       "LTR27_ADCStop",    "LTR27_Recv",
    "LTR27_ProcessData",   "LTR27_GetDescription", "LTR_Init",         "LTR_Open",
    "LTR_Close",           "LTR_GetCrates",        "LTR_GetCrateInfo", "LTR_Config",
    "LTR_GetCrateModules", "LTR_MakeStartMark",
};

}  // namespace

const char* ErrorText(int32_t code) {
    if (code < NullTextsBelow) return nullptr;
    if (code > 0 || code <= -static_cast<int32_t>(std::size(Texts))) return "Unknown error";
    return Texts[-code];
}

bool IsFaultableCall(std::string_view function) {
    return std::find(FaultableCalls.begin(), FaultableCalls.end(), function) != FaultableCalls.end();
}

}  // namespace ltrsim
