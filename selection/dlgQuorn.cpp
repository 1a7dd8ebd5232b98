#include "selection/dlgQuorn.h"

#include <cstdlib>

#include "base/two_digits.h"
#include "resources/icons.h"
#include "selection/name_pattern.h"

namespace corvane {

int SelectDevice(const CrateSearch& search) {
    dlgQuorn dialog;
    if (!dialog.FillTree(search)) return -1;
    ShowModal(dialog);
    return dialog.Selection;
}

bool dlgQuorn::FillTree(const CrateSearch& search) {
    Selection = -1;
    if (search.CrateListCount < 1) return false;
    Caption += " - IP: " + search.CrateList[0].Address;  // all crates are of the same server
    tvwLTR.clear();
    for (size_t i = 0; i < static_cast<size_t>(search.CrateListCount); i++) {
        const CrateListEntry& crate = search.CrateList[i];
        const std::string key = "C" + std::to_string(i);
        const auto parent = static_cast<int>(tvwLTR.size());
        tvwLTR.push_back({key, crate.TypeName + " SN:" + crate.Serial, CratePicture, -1});
        for (int32_t j = 0; j < crate.ModuleCount(); j++) {
            const ModuleListEntry& module = crate.Modules[static_cast<size_t>(j)];
            tvwLTR.push_back({key + "M" + std::to_string(j), "Slot " + TwoDigits(module.Slot) + " - " + module.Name,
                              ModulePicture, parent});
        }
    }
    ClickNode("C0");
    return true;
}

// A module's key begins with its crate's key, so the first number is the crate's in both.
void dlgQuorn::ClickNode(const std::string& key) {
    Selection = MatchesPattern(key, "C#*") ? static_cast<int16_t>(std::atoi(key.c_str() + 1)) : int16_t{-1};
}

}  // namespace corvane
