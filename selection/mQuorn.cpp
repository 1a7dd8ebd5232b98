#include "selection/mQuorn.h"

#include <algorithm>

#include "base/dotted_address.h"
#include "hardware/TLTRAPI.h"
#include "platform/component.h"
#include "platform/event_log.h"
#include "platform/files.h"
#include "platform/user_interface.h"
#include "resources/texts.h"
#include "selection/dlgIP.h"
#include "selection/name_pattern.h"

namespace corvane {

namespace {

std::vector<ModuleListEntry> MatchingModules(const TLTRAPI& crates, int32_t index, const std::string& moduleFilter) {
    std::vector<ModuleListEntry> modules;
    for (int32_t slot = 0; slot < CrateSlots; slot++) {
        if (crates.ModuleId(index, slot) == 0) continue;
        const std::string name = crates.ModuleTypeText(index, slot);
        if (moduleFilter.empty() || MatchesPattern(name, moduleFilter)) modules.push_back({name, slot + 1});
    }
    return modules;
}

// What the log says of a search; answer: the number of crates, or the vendor's code.
std::string SearchText(const CrateSearch& search, const TLTRAPI& crates, uint32_t netAddr, int32_t answer) {
    const std::string server = "server " + AddressToText(netAddr) + ": ";
    if (answer < 0) return server + crates.GetErrorString();
    std::string text = server + "crates " + std::to_string(answer) + ", of which usable";
    if (search.CrateList.empty()) text += " none";
    for (const CrateListEntry& crate : search.CrateList) {
        text += " \"" + crate.Serial + "\" (" + crate.TypeName + ", " + crate.Interface + ", slots";
        for (const ModuleListEntry& module : crate.Modules) text += " " + std::to_string(module.Slot);
        text += ")";
    }
    return text;
}

}  // namespace

int16_t FindCrates(CrateSearch& search, const std::string& moduleFilter, const std::string& adcName,
                   std::string& lastError) {
    int16_t count = EnumerateCrates(search, search.Server != 0 ? search.Server : ThisMachine, moduleFilter);
    if (count < 1 && search.Interactive) {
        const uint32_t chosen = SelectIP(adcName);
        if (chosen != 0) count = EnumerateCrates(search, chosen, moduleFilter);
    }
    if (count < 0) lastError = StringResource(RunServerText);
    return count;
}

int16_t EnumerateCrates(CrateSearch& search, uint32_t netAddr, const std::string& moduleFilter) {
    const platform::BusyPointer busyPointer;
    search.CrateList.clear();
    search.CrateListCount = 0;
    TLTRAPI crates;
    const int32_t count = crates.GetCrates(netAddr);
    // A failure may have a positive code, too; the crates are forgotten then, so no modules are found below.
    for (int32_t i = 0; i < std::min(count, MaxCrates); i++) {
        std::vector<ModuleListEntry> modules = MatchingModules(crates, i, moduleFilter);
        if (modules.empty()) continue;
        search.CrateList.push_back({netAddr, AddressToText(netAddr), crates.CrateTypeText(i), crates.CrateSerial(i),
                                    crates.CrateInterfaceText(i), std::move(modules)});
    }
    search.CrateListCount = count < 0 ? int16_t{-1} : static_cast<int16_t>(search.CrateList.size());
    platform::LogEvent([&] { return SearchText(search, crates, netAddr, count); });
    return search.CrateListCount;
}

std::string AddressToText(uint32_t netAddr) {
    return DottedText(netAddr);
}

void SetHelpFile(std::string& helpFile) {
    constexpr size_t ExtensionLength = 4;
    const std::string folder = platform::ComponentFolder();
    const std::string name = platform::FirstFile(folder, "LCard", ".chm");
    if (name.size() > ExtensionLength) {
        helpFile = platform::PathIn(folder, name);
        return;
    }
    const std::string page = platform::PathIn(platform::PathIn(folder, "guide"), StringResource(GuideFileText));
    if (!platform::ReadFileStart(page, 1).empty()) helpFile = page;
}

}  // namespace corvane
