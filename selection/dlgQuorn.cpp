#include "selection/dlgQuorn.h"

#include <cstdlib>

#include "selection/dialog_windows.h"
#include "selection/name_pattern.h"
#include "selection/slot_text.h"

namespace corvane {

int SelectDevice(DriverState& state) {
    dlgQuorn dialog;
    if (!dialog.FillTree(state)) return -1;
    ShowModal(dialog);
    return dialog.Selection;
}

bool dlgQuorn::FillTree(const DriverState& state) {
    Selection = -1;
    if (state.CrateListCount < 1) return false;
    Caption += " - IP: " + state.CrateList[0].Address;  // all crates are of the same server
    tvwLTR.clear();
    for (size_t i = 0; i < static_cast<size_t>(state.CrateListCount); i++) {
        const CrateListEntry& crate = state.CrateList[i];
        const std::string key = "C" + std::to_string(i);
        const auto parent = static_cast<int>(tvwLTR.size());
        tvwLTR.push_back({key, crate.TypeName + " SN:" + crate.Serial, platform::CratePicture, -1});
        for (size_t j = 0; j < crate.Modules.size(); j++) {
            const ModuleListEntry& module = crate.Modules[j];
            tvwLTR.push_back({key + "M" + std::to_string(j), "Slot " + SlotText(module.Slot) + " - " + module.Name,
                              platform::ModulePicture, parent});
        }
    }
    ClickNode("C0");
    return true;
}

// A module's key goes on behind its crate's, so the number is the crate's in both.
void dlgQuorn::ClickNode(const std::string& key) {
    Selection = MatchesPattern(key, "C#*") ? static_cast<int16_t>(std::atoi(key.c_str() + 1)) : int16_t{-1};
}

}  // namespace corvane
