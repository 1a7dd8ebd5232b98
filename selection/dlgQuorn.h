// The Select Device dialog: which of several crates to use.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/tree_node.h"
#include "selection/crate_list.h"

namespace corvane {

// Index of the chosen entry of CrateList; -1 when none was chosen.
int SelectDevice(const CrateSearch& search);

// The dialog without its window, which shows the public members and reports what the user did. OK and Enter just close
// it.
class dlgQuorn {
public:
    // Lists the crates of the last search and chooses the first one. False when there are none.
    bool FillTree(const CrateSearch& search);
    // Chooses the crate whose node, or one of whose modules' nodes, has this key; none when the key has another form.
    void ClickNode(const std::string& key);
    void PressCancel() { Selection = -1; }

    // The chosen crate's node is shown in bold, and OK needs one.
    bool Bold(const std::string& key) const { return key == "C" + std::to_string(Selection); }
    bool OKEnabled() const { return Selection >= 0; }

    std::string Caption = "Select Device";
    std::vector<platform::TreeNode> tvwLTR;  // all expanded; initially the first node is selected
    int16_t Selection = -1;                  // index in CrateList
};

// Shows the dialog and returns when the user has closed it.
void ShowModal(dlgQuorn& dialog);

}  // namespace corvane
