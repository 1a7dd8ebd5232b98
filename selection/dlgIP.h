// The IP address list: where the user picks another LTR server.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "selection/ucIP.h"

namespace corvane {

// Address of the server that the user chose; 0 when none was chosen. adcName: title of the dialog's message.
uint32_t SelectIP(const std::string& adcName);

// The dialog without its window, which shows the public members and the answers below, and reports what the user did.
// Entry 0 is always this machine, no address is in the list twice, and none is 0.
class dlgIP {
public:
    // adcName: title of the dialog's message. folder: that of the file with the addresses.
    dlgIP(const std::string& adcName, const std::string& folder);

    const std::vector<uint32_t>& lstIP() const { return lstIP_; }  // in the order in which they are shown
    int ListIndex() const { return ListIndex_; }                   // selected entry; -1: none
    bool RemoveEnabled() const { return ListIndex_ >= 1; }
    uint32_t SelectedIP() const { return SelectedIP_; }

    void Select(int index);  // also an entry that is selected already; -1: none
    bool PressOK();          // true: the dialog closes. False: the focus goes to ucIP's BoxToFill
    void PressCancel();
    void PressRemove();
    void PressClear();
    // Called when the window has been closed, in whichever way: writes the list to its file when it has changed.
    void Unload();

    std::string Caption, RemoveCaption, ClearCaption, CancelCaption;
    ucIP Address;

private:
    void SetCaptions();
    void LoadList();
    void SaveList();
    void AddIP(uint32_t address, int position, bool select);

    std::string ADCName_;
    std::string ListFile_;
    std::vector<uint32_t> lstIP_;
    int ListIndex_ = -1;
    bool ListChanged_ = false;  // since it was loaded
    uint32_t SelectedIP_ = 0;
};

// Shows the dialog and returns when the user has closed it.
void ShowModal(dlgIP& dialog);

}  // namespace corvane
