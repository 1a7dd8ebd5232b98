// The window of the IP address list.
#include <windows.h>

#include <commctrl.h>

#include "base/dotted_address.h"
#include "platform/win32/dialog_window.h"
#include "platform/win32/wide_text.h"
#include "selection/dlgIP.h"
#include "selection/win32/ucIP_window.h"

namespace corvane {

namespace {

constexpr int ClientWidth = 3360, ClientHeight = 3000;
enum Id { cmdOK = IDOK, cmdCancel = IDCANCEL, NameOfList = 100, lstIP, cmdRemove, cmdClear, FirstOfAddress = 200 };

class IPWindow final : public platform::DialogWindow {
public:
    explicit IPWindow(dlgIP& dialog)
        : DialogWindow(dialog.Caption, ClientWidth, ClientHeight),
          Dialog_(dialog),
          Address_(dialog.Address, FirstOfAddress) {
        constexpr DWORD ListStyle = WS_VISIBLE | WS_TABSTOP | WS_VSCROLL | LBS_NOTIFY | LBS_NOINTEGRALHEIGHT;
        constexpr DWORD ButtonStyle = WS_VISIBLE | WS_TABSTOP;
        Address_.AddControls(Controls, {105, 60, 1875, 315}, dialog.Caption);
        Controls.insert(Controls.end(),
                        {
                            {NameOfList, WC_STATICW, 0, {0, 0, 0, 0}, dialog.Caption},
                            {lstIP, WC_LISTBOXW, ListStyle, {105, 420, 1875, 2460}, {}, WS_EX_CLIENTEDGE},
                            {cmdOK, WC_BUTTONW, ButtonStyle | BS_DEFPUSHBUTTON, {2115, 105, 1125, 345}, "OK"},
                            {cmdRemove, WC_BUTTONW, ButtonStyle, {2115, 1020, 1125, 345}, dialog.RemoveCaption},
                            {cmdClear, WC_BUTTONW, ButtonStyle, {2115, 1500, 1125, 345}, dialog.ClearCaption},
                            {cmdCancel, WC_BUTTONW, ButtonStyle, {2115, 2535, 1125, 345}, dialog.CancelCaption},
                        });
    }

private:
    void Loaded() override {
        Address_.Attach(Window());
        ShowList();
    }

    void Placed() override { Address_.Placed(Window()); }

    void Command(int id, int code) override {
        if (Address_.Owns(id)) return Address_.Command(id, code);
        if (id == lstIP && code == LBN_SELCHANGE) {
            Dialog_.Select(SelectedIndex());
            ShowSelection();
        } else if (id == cmdCancel) {
            Dialog_.PressCancel();
            Close();
        } else if (id == cmdOK) {
            PressOK();
        } else if (id == cmdRemove) {
            // Reads the selection anew: an automation tool selects without a notification.
            if (SelectedIndex() != Dialog_.ListIndex()) Dialog_.Select(SelectedIndex());
            Dialog_.PressRemove();
            ShowList();
        } else if (id == cmdClear) {
            Dialog_.PressClear();
            ShowList();
        }
    }

    HBRUSH Background(int id) override { return Address_.Owns(id) ? GetSysColorBrush(COLOR_WINDOW) : nullptr; }

    int SelectedIndex() const { return static_cast<int>(SendMessageW(Control(lstIP), LB_GETCURSEL, 0, 0)); }

    void PressOK() {
        if (Dialog_.PressOK()) return Close();
        Address_.Show();
        Address_.Focus(Dialog_.Address.BoxToFill());
    }

    void ShowList() {
        const HWND list = Control(lstIP);
        SendMessageW(list, WM_SETREDRAW, FALSE, 0);
        SendMessageW(list, LB_RESETCONTENT, 0, 0);
        for (const uint32_t address : Dialog_.lstIP()) {
            SendMessageW(list, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(platform::Wide(DottedText(address)).c_str()));
        }
        SendMessageW(list, LB_SETCURSEL, static_cast<WPARAM>(Dialog_.ListIndex()), 0);
        SendMessageW(list, WM_SETREDRAW, TRUE, 0);
        InvalidateRect(list, nullptr, TRUE);
        ShowSelection();
    }

    // A button must not keep the focus when it is disabled: no key would have any effect then.
    void ShowSelection() {
        if (!Dialog_.RemoveEnabled() && GetFocus() == Control(cmdRemove)) {
            SendMessageW(Window(), WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(Control(lstIP)), TRUE);
        }
        EnableWindow(Control(cmdRemove), Dialog_.RemoveEnabled());
        Address_.Show();
    }

    dlgIP& Dialog_;
    ucIPWindow Address_;
};

}  // namespace

// Without an owner window: it appears while the host waits for the search to end.
void ShowModal(dlgIP& dialog) {
    if (!IPWindow(dialog).ShowModal(nullptr)) dialog.PressCancel();
}

}  // namespace corvane
