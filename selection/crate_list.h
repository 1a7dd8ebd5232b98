// What the last crate search found.
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

struct CrateSearch {
    std::vector<CrateListEntry> CrateList;
    int16_t CrateListCount = 0;  // valid entries; -1: the last search could not ask its server
};

}  // namespace corvane
