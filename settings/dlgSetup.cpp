#include "settings/dlgSetup.h"

#include <cstdlib>
#include <exception>
#include <stdexcept>

#include "common/mTypes3.h"
#include "platform/component_version.h"
#include "platform/message_box.h"
#include "selection/name_pattern.h"
#include "selection/slot_text.h"
#include "settings/dlgSetup_window.h"

namespace corvane {

namespace {

// The design-time text stays where there is no other.
void Localize(std::string& caption, int32_t number) {
    const std::string text = ResourceText(number);
    if (!text.empty()) caption = text;
}

// Exactly `width` characters: cut, or filled up with spaces.
std::string FixedWidth(const std::string& text, int width) {
    std::string fixed;
    for (const char byte : text) {
        const bool beginsCharacter = (static_cast<uint8_t>(byte) & 0xC0) != 0x80;
        if (beginsCharacter && width-- == 0) return fixed;
        fixed += byte;
    }
    return fixed.append(static_cast<size_t>(width), ' ');
}

std::string MezzanineLine(int32_t slot, const MezzanineInfo& mezzanine, const std::string& range) {
    constexpr int SerialWidth = 8;
    if (mezzanine.Name.empty()) return SlotText(slot) + "_Empty";
    return SlotText(slot) + "_" + mezzanine.Name + "\tv" + mezzanine.Revision + "\t" +
           FixedWidth(mezzanine.Serial, SerialWidth) + "\t" + range;
}

}  // namespace

bool ShowSetting(DriverState& state) {
    if (state.Engine.Busy) return false;
    try {
        dlgSetup dialog(state);
        ShowModal(dialog);
    } catch (const std::exception& failure) {
        platform::ShowMessage(state.Device.ADCName, std::string("Error: ") + failure.what());
    }
    return false;
}

dlgSetup::dlgSetup(DriverState& state) : State_(state) {
    constexpr size_t ExtensionLength = 4;
    constexpr size_t NameLetters = 3;  // of LTR27: the rest is the topic's number
    LocalizeCaptions();
    if (state.HelpFile.size() > ExtensionLength) {
        const std::string& name = state.Device.ADCName;
        HelpFile = state.HelpFile;
        HelpTopic = name.size() > NameLetters ? std::atoi(name.c_str() + NameLetters) : 0;
    }
    FillContents();
}

void dlgSetup::LocalizeCaptions() {
    Caption = ResourceText(50, State_.Device.DriverName) + " (v" + platform::ComponentVersion() + ")";
    Localize(MezzaninesCaption, 2700);
    Localize(SynchroCaption, 1110);
    Localize(MarkSTARTCaption, 400);
    Localize(CancelCaption, 21);
    Localize(HelpCaption, 22);
}

void dlgSetup::FillContents() {
    FillModuleTree();
    txtInfo = State_.Crate.Info;
    size_t range = 0;
    for (const ModuleRecord& module : State_.Engine.Opened()) {
        for (const MezzanineInfo& mezzanine : module.Mezzanines) {
            lstMezzanines.push_back(MezzanineLine(module.Slot, mezzanine, State_.Device.Ranges.at(range++)));
        }
    }
    cboMarkSTART = State_.Crate.MarkSTARTMode & 15;
    if (cboMarkSTART >= static_cast<int>(MarkModes.size())) throw std::out_of_range("no such START mark mode");
}

void dlgSetup::FillModuleTree() {
    tvwLTR = {{"C" + State_.Crate.Serial, State_.Crate.TypeName, platform::CratePicture, -1}};
    for (const ModuleRecord& module : State_.Engine.Opened()) {
        tvwLTR.push_back({"M" + std::to_string(tvwLTR.size() - 1), SlotText(module.Slot) + ". " + module.Name,
                          platform::ModulePicture, 0});
    }
}

void dlgSetup::ClickNode(const std::string& key) {
    const bool isModule = MatchesPattern(key, "M#*");
    txtInfo =
        isModule ? State_.Engine.Modules.at(static_cast<size_t>(std::atoi(key.c_str() + 1))).Info : State_.Crate.Info;
}

void dlgSetup::PressOK(int mark) {
    if (mark >= 0 && mark < static_cast<int>(MarkModes.size())) State_.Crate.MarkSTARTMode = static_cast<int16_t>(mark);
}

}  // namespace corvane
