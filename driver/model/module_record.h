// One opened LTR27 module. Owned by the engine from opening to closing. While a recording thread runs, the fields under
// "recording" and Handle are that thread's alone.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "driver/model/gap.h"
#include "hardware/vendor_records.h"

namespace corvane {

struct MezzanineInfo {
    std::string Name;  // empty: nothing is fitted at this position
    std::string Serial;
    std::string Revision;
    std::string Unit;
    float Top = 1;      // physical value at ADC code 32768
    float Bottom = -1;  // physical value at ADC code 0
};

struct ModuleRecord {
    int32_t Slot = 0;  // crate slot, 1-based
    std::string Name;
    std::string Serial;
    std::string Firmware;
    std::string Info;  // description shown to the user
    std::array<MezzanineInfo, MezzaninePositions> Mezzanines;

    // recording
    uint32_t StartTick = 0;                      // ms, when its acquisition was started
    int32_t Received = 0;                        // words of the current block already processed; 0: none
    int32_t Measured = 0;                        // measured kadrs, with which the current block begins
    GapReason Missing = GapReason::NothingCame;  // why the block's other kadrs were not measured
    uint32_t StreamWords = 0;   // words received since the start, modulo 2^32: tells where a kadr begins
    std::vector<double> Block;  // one block of calibrated codes; word w is channel w mod 16 of kadr w div 16

    // single readings
    uint32_t PollTick = 0;  // ms, of the last reading
    std::array<double, ModuleChannels> Snapshot = {};

    TLTR27 Handle = {};
};

// True when a mezzanine is fitted for the module's channel (0 to 15).
inline bool ChannelFitted(const ModuleRecord& module, int channel) {
    return !module.Mezzanines[static_cast<size_t>(channel / 2)].Name.empty();
}

}  // namespace corvane
