#include "selection/mQuorn.h"

#include <algorithm>

#include "hardware/vendor_text.h"
#include "platform/component.h"
#include "platform/user_interface.h"
#include "selection/dlgIP.h"
#include "selection/name_pattern.h"

namespace corvane {

namespace {

constexpr uint32_t LocalServer = 0x7F000001;  // 127.0.0.1
constexpr int ConnectText = 100;              // "Connect LTR and run LTR-Server!"

std::vector<ModuleListEntry> MatchingModules(const TLTRAPI& crates, int32_t index, const std::string& moduleFilter) {
    std::vector<ModuleListEntry> modules;
    for (int32_t slot = 0; slot < CrateSlots; slot++) {
        if (crates.ModuleId(index, slot) == 0) continue;
        const std::string name = crates.ModuleTypeText(index, slot);
        if (moduleFilter.empty() || MatchesPattern(name, moduleFilter)) modules.push_back({name, slot + 1});
    }
    return modules;
}

}  // namespace

int16_t FindCrates(DriverState& state, const std::string& moduleFilter) {
    int16_t count = EnumerateCrates(state, LocalServer, moduleFilter);
    if (count < 1) {
        const uint32_t chosen = SelectIP(state);
        if (chosen != 0) count = EnumerateCrates(state, chosen, moduleFilter);
    }
    if (count < 0) state.Device.LastError = platform::StringResource(ConnectText);
    return count;
}

int16_t EnumerateCrates(DriverState& state, uint32_t netAddr, const std::string& moduleFilter) {
    const platform::BusyPointer busyPointer;
    state.CrateList.clear();
    state.CrateListCount = 0;
    TLTRAPI crates;
    const int32_t count = crates.GetCrates(netAddr);
    // Where a failure has a positive code there are no crates behind that number.
    for (int32_t i = 0; i < std::min(count, MaxCrates); i++) {
        std::vector<ModuleListEntry> modules = MatchingModules(crates, i, moduleFilter);
        if (modules.empty()) continue;
        state.CrateList.push_back({netAddr, AddressToText(netAddr), crates.CrateTypeText(i), crates.CrateSerial(i),
                                   crates.CrateInterfaceText(i), std::move(modules)});
    }
    state.CrateListCount = count < 0 ? int16_t{-1} : static_cast<int16_t>(state.CrateList.size());
    return state.CrateListCount;
}

std::string AddressToText(uint32_t netAddr) {
    return DottedText(netAddr);
}

void SetHelpFile(DriverState& state) {
    constexpr size_t ExtensionLength = 4;
    const std::string folder = platform::ComponentFolder();
    const std::string name = platform::FirstFile(folder, "LCard", ".chm");
    if (name.size() > ExtensionLength) state.HelpFile = folder + "\\" + name;
}

}  // namespace corvane
