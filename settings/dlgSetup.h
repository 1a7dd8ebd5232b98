// The setup dialog.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "driver/model/channel_model.h"
#include "driver/model/crate_info.h"
#include "driver/model/engine_state.h"
#include "platform/tree_node.h"

namespace corvane {

// Shows the dialog modally, unless a recording is under way. Always false: the host has nothing to do afterwards. The
// user is told when the dialog can't be shown.
bool ShowSetting(const DeviceInfo& device, const EngineState& engine, CrateInfo& crate, const std::string& helpFile);

// The dialog without its window, which shows the public members and reports what the user did. Cancel just closes it.
class dlgSetup {
public:
    static constexpr std::array<int, 3> TabStops = {40, 75, 125};  // of the mezzanines' lines, in dialog units
    // In the order of CrateInfo's MarkSTARTMode.
    static constexpr std::array<const char*, 8> MarkModes = {"Make Internal",    "Make DIGOUT1",     "Make DIGOUT2",
                                                             "Wait Internal",    "Wait DIGIN1 Rise", "Wait DIGIN1 Fall",
                                                             "Wait DIGIN2 Rise", "Wait DIGIN2 Fall"};

    // Throws std::out_of_range when the mark mode is none of MarkModes, or a mezzanine has no range.
    dlgSetup(const DeviceInfo& device, const EngineState& engine, CrateInfo& crate, const std::string& helpFile);

    void ClickNode(const std::string& key);
    void PressOK(int mark);  // index of the selected entry of MarkModes; any other number changes nothing

    bool HelpEnabled() const { return !HelpFile.empty(); }

    std::string Caption;
    std::string MezzaninesCaption = "&Mezzanines:";
    std::string SynchroCaption = "Sync&hronization";
    std::string MarkSTARTCaption = "Use START &Mark:";
    std::string CancelCaption = "Cancel";
    std::string HelpCaption = "Help";
    std::vector<platform::TreeNode> tvwLTR;  // always expanded; initially the first node is selected
    std::string txtInfo;                     // describes the node that was clicked
    std::vector<std::string> lstMezzanines;
    int cboMarkSTART = 0;   // entry that is selected initially
    std::string HelpFile;   // full path; empty: there is no help
    int32_t HelpTopic = 0;  // context number in it

private:
    void LocalizeCaptions();
    void FillContents();
    void FillModuleTree();

    const DeviceInfo& Device_;
    const EngineState& Engine_;
    CrateInfo& Crate_;
};

// Shows the dialog and returns when the user has closed it. Throws when that fails.
void ShowModal(dlgSetup& dialog);

}  // namespace corvane
