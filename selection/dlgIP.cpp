#include "selection/dlgIP.h"

#include <algorithm>

#include "base/dotted_address.h"
#include "common/mTypes3.h"
#include "platform/component.h"
#include "platform/files.h"
#include "platform/user_interface.h"
#include "resources/texts.h"
#include "selection/address_file.h"

namespace corvane {

uint32_t SelectIP(const std::string& adcName) {
    dlgIP dialog(adcName, platform::ComponentFolder());
    ShowModal(dialog);
    dialog.Unload();
    return dialog.SelectedIP();
}

dlgIP::dlgIP(const std::string& adcName, const std::string& folder)
    : ADCName_(adcName), ListFile_(platform::PathIn(folder, "iplist.txt")) {
    SetCaptions();
    AddIP(ThisMachine, 0, true);
    LoadList();
    ListChanged_ = false;
    if (lstIP_.size() >= 2) Select(1);
}

void dlgIP::SetCaptions() {
    Caption = ResourceText(SelectAddressText);
    CancelCaption = ResourceText(CancelText);
    RemoveCaption = ResourceText(RemoveText);
    ClearCaption = ResourceText(ClearText);
}

void dlgIP::Select(int index) {
    ListIndex_ = index >= 0 && index < static_cast<int>(lstIP_.size()) ? index : -1;
    if (ListIndex_ >= 0) Address.SetValue(lstIP_[static_cast<size_t>(ListIndex_)]);
}

void dlgIP::LoadList() {
    for (const uint32_t address : ReadAddresses(ListFile_)) AddIP(address, 0, false);
}

void dlgIP::SaveList() {
    WriteAddresses(ListFile_, std::span(lstIP_).subspan(1));
}

// Position 0 means the end of the list: the first entry is always this machine.
void dlgIP::AddIP(uint32_t address, int position, bool select) {
    if (address == 0 || lstIP_.size() >= MaxAddresses) return;
    if (std::find(lstIP_.begin(), lstIP_.end(), address) != lstIP_.end()) return;
    const auto count = static_cast<int>(lstIP_.size());
    const int index = position >= 1 && position <= count ? position : count;
    lstIP_.insert(lstIP_.begin() + index, address);
    if (select) Select(index);
    ListChanged_ = true;
}

bool dlgIP::PressOK() {
    const uint32_t chosen = Address.Value();
    if (chosen == 0) {
        platform::ShowMessage(ADCName_, ResourceText(NoAddressText));
        return false;
    }
    AddIP(chosen, 1, true);
    SelectedIP_ = chosen;
    return true;
}

void dlgIP::PressCancel() {
    SelectedIP_ = 0;
}

void dlgIP::PressRemove() {
    if (ListIndex_ <= 0) return;
    lstIP_.erase(lstIP_.begin() + ListIndex_);
    Select(std::min(ListIndex_, static_cast<int>(lstIP_.size()) - 1));
    ListChanged_ = true;
}

void dlgIP::PressClear() {
    if (lstIP_.size() < 2) return;
    Select(0);
    lstIP_.resize(1);
    ListChanged_ = true;
}

void dlgIP::Unload() {
    if (ListChanged_) SaveList();
}

}  // namespace corvane
