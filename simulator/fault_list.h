#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "simulator/scenario.h"

namespace ltrsim {

// Where a call goes. Slot 0: the crate itself; an empty serial: the server.
struct Target {
    uint32_t Server = 0;
    std::string Crate;
    uint32_t Slot = 0;
};

// What the faults do to one call.
struct Verdict {
    int32_t Error = 0;
    double Delay = 0;               // s, before the call goes on
    std::optional<uint32_t> Short;  // words that LTR27_Recv delivers at most
    uint32_t Excess = 0;            // words that it claims beyond those that were asked for
    bool Stall = false;
    std::optional<uint32_t> Marks;  // in place of the first time mark; the others are as wrong
    std::optional<double> Value;    // that LTR27_ProcessData gives for channel 0 in the middle of what it is given
    std::optional<uint32_t> Size;   // values that it claims to have made; it makes no more
};

// The faults in force. Not safe from several threads: the world's lock guards it.
class FaultList {
public:
    void Add(const Fault& fault) { Entries_.push_back({fault, 0, 0, false}); }
    // Gives the memory back, too: whoever looks for what grows sees the driver alone.
    void Clear() { std::vector<Entry>().swap(Entries_); }

    // Judges and counts one call, `elapsed` seconds after the scenario was set. The first fault that acts decides;
    // every fault that matches counts the call.
    Verdict Judge(std::string_view call, const Target& target, double elapsed);

private:
    struct Entry {
        Fault Definition;
        int64_t Matched = 0;
        int64_t Acted = 0;
        bool Unplugs = false;  // what this fault aims at is unplugged
    };

    static bool Acts(Entry& entry, std::string_view call, const Target& target, double elapsed);

    std::vector<Entry> Entries_;
};

}  // namespace ltrsim
