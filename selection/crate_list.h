// The search for a crate and its result.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace corvane {

struct ModuleListEntry {
    std::string Name;  // module type, for example LTR27
    int32_t Slot = 0;  // 1 to 16
};

struct CrateListEntry {
    uint32_t NetAddr = 0;
    std::string Address;  // the same, dotted
    std::string TypeName;
    std::string Serial;
    std::string Interface;
    std::vector<ModuleListEntry> Modules;  // the matching modules in slot order, never empty

    int32_t ModuleCount() const { return static_cast<int32_t>(Modules.size()); }
};

// Where to search, as a host may ask for it, and what the last search found.
struct CrateSearch {
    bool Interactive = true;  // the user may be asked for a server and for a crate
    uint32_t Server = 0;      // the server to search first; 0: that of this machine
    std::string CrateSerial;  // the crate to open; empty: the only one, or the user's choice

    std::vector<CrateListEntry> CrateList;
    int16_t CrateListCount = 0;  // valid entries; -1: the last search could not ask its server
};

}  // namespace corvane
