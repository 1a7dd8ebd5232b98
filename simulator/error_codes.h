// Result codes of the simulated functions, and which functions there are. The codes are the simulator's own.
#pragma once

#include <cstdint>
#include <string_view>

namespace ltrsim {

constexpr int32_t Success = 0;
constexpr int32_t BadArgument = -1;
constexpr int32_t WrongRecordSize = -2;
constexpr int32_t NoServer = -3;
constexpr int32_t NoCrate = -4;
constexpr int32_t NoModule = -5;
constexpr int32_t OtherModule = -6;
constexpr int32_t NotOpen = -7;
constexpr int32_t Unplugged = -8;
constexpr int32_t ModuleRuns = -9;
constexpr int32_t RecordBusy = -10;
constexpr int32_t WrongWords = -11;
constexpr int32_t WrongPort = -12;
constexpr int32_t ScenarioBroken = -13;
constexpr int32_t InternalError = -14;
constexpr int32_t NotInitialised = -15;

// Null below -9999, as a library may answer for a code that it doesn't know.
const char* ErrorText(int32_t code);

bool IsFaultableCall(std::string_view function);

}  // namespace ltrsim
