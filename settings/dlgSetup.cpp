#include "settings/dlgSetup.h"

#include <corvane_version.h>

#include <cstdlib>
#include <exception>
#include <stdexcept>

#include "base/two_digits.h"
#include "base/utf8.h"
#include "common/mTypes3.h"
#include "platform/user_interface.h"
#include "resources/icons.h"
#include "resources/texts.h"
#include "selection/name_pattern.h"

namespace corvane {

namespace {

// The built-in caption stays when there is no text with this number.
void Localize(std::string& caption, TextNumber number) {
    const std::string text = ResourceText(number);
    if (!text.empty()) caption = text;
}

// Exactly `width` characters: cut, or filled up with spaces.
std::string FixedWidth(const std::string& text, size_t width) {
    const std::string cut = text.substr(0, LengthOfCharacters(text, width));
    return cut + std::string(width - CharacterCount(cut), ' ');
}

std::string MezzanineLine(int32_t slot, const MezzanineInfo& mezzanine, const std::string& range) {
    constexpr size_t SerialWidth = 8;
    if (mezzanine.Name.empty()) return TwoDigits(slot) + "_Empty";
    return TwoDigits(slot) + "_" + mezzanine.Name + "\tv" + mezzanine.Revision + "\t" +
           FixedWidth(mezzanine.Serial, SerialWidth) + "\t" + range;
}

}  // namespace

bool ShowSetting(const DeviceInfo& device, const EngineState& engine, CrateInfo& crate, const std::string& helpFile) {
    if (engine.Busy) return false;
    try {
        dlgSetup dialog(device, engine, crate, helpFile);
        ShowModal(dialog);
    } catch (const std::exception& failure) {
        platform::ShowMessage(device.ADCName, std::string("Error: ") + failure.what());
    }
    return false;
}

dlgSetup::dlgSetup(const DeviceInfo& device, const EngineState& engine, CrateInfo& crate, const std::string& helpFile)
    : Device_(device), Engine_(engine), Crate_(crate) {
    constexpr size_t ExtensionLength = 4;
    constexpr size_t NameLetters = 3;  // the LTR of LTR27; the digits are the topic's number
    LocalizeCaptions();
    if (helpFile.size() > ExtensionLength) {
        const std::string& name = device.ADCName;
        HelpFile = helpFile;
        HelpTopic = name.size() > NameLetters ? std::atoi(name.c_str() + NameLetters) : 0;
    }
    FillContents();
}

void dlgSetup::LocalizeCaptions() {
    Caption = ResourceText(SetupText, Device_.DriverName) + " (v" CORVANE_VERSION ")";
    Localize(MezzaninesCaption, MezzaninesText);
    Localize(SynchroCaption, SynchroText);
    Localize(MarkSTARTCaption, MarkSTARTText);
    Localize(CancelCaption, CancelText);
    Localize(HelpCaption, HelpText);
}

void dlgSetup::FillContents() {
    FillModuleTree();
    txtInfo = Crate_.Info;
    size_t range = 0;
    for (const ModuleRecord& module : Engine_.Opened()) {
        for (const MezzanineInfo& mezzanine : module.Mezzanines) {
            lstMezzanines.push_back(MezzanineLine(module.Slot, mezzanine, Device_.Ranges.at(range++)));
        }
    }
    cboMarkSTART = Crate_.MarkSTARTMode & 15;
    if (cboMarkSTART >= static_cast<int>(MarkModes.size())) throw std::out_of_range("no such START mark mode");
}

void dlgSetup::FillModuleTree() {
    tvwLTR = {{"C" + Crate_.Serial, Crate_.TypeName, CratePicture, -1}};
    for (const ModuleRecord& module : Engine_.Opened()) {
        tvwLTR.push_back(
            {"M" + std::to_string(tvwLTR.size() - 1), TwoDigits(module.Slot) + ". " + module.Name, ModulePicture, 0});
    }
}

void dlgSetup::ClickNode(const std::string& key) {
    const bool isModule = MatchesPattern(key, "M#*");
    txtInfo = isModule ? Engine_.Modules.at(static_cast<size_t>(std::atoi(key.c_str() + 1))).Info : Crate_.Info;
}

void dlgSetup::PressOK(int mark) {
    if (mark >= 0 && mark < static_cast<int>(MarkModes.size())) Crate_.MarkSTARTMode = static_cast<int16_t>(mark);
}

}  // namespace corvane
