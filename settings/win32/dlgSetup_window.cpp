// The window of the setup dialog.
#include <windows.h>

#include <commctrl.h>

#include <algorithm>

#include "common/mTypes3.h"
#include "platform/user_interface.h"
#include "platform/win32/dialog_window.h"
#include "platform/win32/help.h"
#include "platform/win32/tree_window.h"
#include "platform/win32/wide_text.h"
#include "resources/icons.h"
#include "resources/texts.h"
#include "settings/dlgSetup.h"

namespace corvane {

namespace {

using platform::Inside;
using platform::TwipsRect;

constexpr int ClientWidth = 4710, ClientHeight = 4470;
constexpr int PictureSize = 240;  // twips: 16 pixels at 96 dots per inch
constexpr TwipsRect frMezzaninesPlace = {120, 1020, 4455, 2055}, frSynchroPlace = {120, 3180, 4455, 705};
enum Id {
    cmdOK = IDOK,
    cmdCancel = IDCANCEL,
    NameOfTree = 100,
    tvwLTR,
    NameOfInfo,
    txtInfo,
    frMezzanines,
    lstMezzanines,
    frSynchro,
    lblMarkSTART,
    cboMarkSTART,
    cmdHelp
};

class SetupWindow final : public platform::DialogWindow {
public:
    explicit SetupWindow(dlgSetup& dialog) : DialogWindow(dialog.Caption, ClientWidth, ClientHeight), Dialog_(dialog) {
        constexpr DWORD Stop = WS_VISIBLE | WS_TABSTOP;
        constexpr DWORD TreeStyle = Stop | TVS_HASLINES | TVS_SHOWSELALWAYS | TVS_DISABLEDRAGDROP;
        constexpr DWORD TextStyle = Stop | ES_MULTILINE | ES_READONLY | ES_AUTOVSCROLL | ES_AUTOHSCROLL;
        constexpr DWORD ListStyle = Stop | WS_VSCROLL | WS_HSCROLL | LBS_USETABSTOPS | LBS_NOINTEGRALHEIGHT;
        constexpr DWORD ComboStyle = Stop | WS_VSCROLL | CBS_DROPDOWNLIST;
        // Screen readers read the hidden labels as the names of the tree and of the text.
        Controls = {
            {NameOfTree, WC_STATICW, 0, {0, 0, 0, 0}, "LTR"},
            {tvwLTR, WC_TREEVIEWW, TreeStyle, {120, 120, 2280, 810}, {}, WS_EX_CLIENTEDGE},
            {NameOfInfo, WC_STATICW, 0, {0, 0, 0, 0}, "LTR"},
            // Without an edge, which would leave no room for the last of its four lines.
            {txtInfo, WC_EDITW, TextStyle, {2520, 120, 2070, 795}, {}},
            {frMezzanines, WC_BUTTONW, WS_VISIBLE | BS_GROUPBOX, frMezzaninesPlace, dialog.MezzaninesCaption},
            {lstMezzanines,
             WC_LISTBOXW,
             ListStyle,
             Inside(frMezzaninesPlace, {150, 270, 4155, 1620}),
             {},
             WS_EX_CLIENTEDGE},
            {frSynchro, WC_BUTTONW, WS_VISIBLE | BS_GROUPBOX, frSynchroPlace, dialog.SynchroCaption},
            {lblMarkSTART, WC_STATICW, WS_VISIBLE, Inside(frSynchroPlace, {225, 300, 1320, 195}),
             dialog.MarkSTARTCaption},
            {cboMarkSTART, WC_COMBOBOXW, ComboStyle, Inside(frSynchroPlace, {1620, 240, 2475, 315}), {}},
            {cmdOK, WC_BUTTONW, Stop | BS_DEFPUSHBUTTON, {810, 4020, 1155, 345}, "OK"},
            {cmdCancel, WC_BUTTONW, Stop, {2115, 4020, 1155, 345}, dialog.CancelCaption},
            {cmdHelp, WC_BUTTONW, Stop, {3420, 4020, 1155, 345}, dialog.HelpCaption},
        };
    }

private:
    void Loaded() override {
        Tree_.Fill(Control(tvwLTR), Dialog_.tvwLTR);
        SetText(txtInfo, Dialog_.txtInfo);
        for (const std::string& line : Dialog_.lstMezzanines) AddLine(lstMezzanines, LB_ADDSTRING, line);
        for (const char* mode : dlgSetup::MarkModes) AddLine(cboMarkSTART, CB_ADDSTRING, mode);
        SendMessageW(Control(cboMarkSTART), CB_SETCURSEL, static_cast<WPARAM>(Dialog_.cboMarkSTART), 0);
        EnableWindow(Control(cmdHelp), Dialog_.HelpEnabled());
        Filled_ = true;
    }

    void Placed() override {
        Tree_.LoadPictures(Control(tvwLTR), TreeIcons, Pixels(PictureSize));
        SendMessageW(Control(txtInfo), EM_SETMARGINS, EC_LEFTMARGIN | EC_RIGHTMARGIN, 0);  // there is no room for them
        std::array<int, 3> stops = dlgSetup::TabStops;
        SendMessageW(Control(lstMezzanines), LB_SETTABSTOPS, stops.size(), reinterpret_cast<LPARAM>(stops.data()));
        SendMessageW(Control(lstMezzanines), LB_SETHORIZONTALEXTENT, static_cast<WPARAM>(WidestLine()), 0);
    }

    // In pixels. The list needs it to be scrolled sideways, when a unit's text is long.
    int WidestLine() const {
        const HWND list = Control(lstMezzanines);
        const HDC context = GetDC(list);
        const HGDIOBJ previous = SelectObject(context, reinterpret_cast<HGDIOBJ>(SendMessageW(list, WM_GETFONT, 0, 0)));
        const int letterWidth = platform::MeanLetterWidth(context);
        std::array<int, 3> stops = dlgSetup::TabStops;
        for (int& stop : stops) stop = MulDiv(stop, letterWidth, 4);  // a dialog unit is a quarter of a letter's width
        int widest = 0;
        for (const std::string& line : Dialog_.lstMezzanines) {
            const std::wstring text = platform::Wide(line);
            const DWORD extent = GetTabbedTextExtentW(context, text.c_str(), static_cast<int>(text.size()),
                                                      static_cast<int>(stops.size()), stops.data());
            widest = std::max(widest, static_cast<int>(LOWORD(extent)));
        }
        SelectObject(context, previous);
        ReleaseDC(list, context);
        return widest + letterWidth;
    }

    void Command(int id, int) override {
        if (id == cmdOK) {
            // The selection is read only now: an automation tool selects without a notification.
            Dialog_.PressOK(static_cast<int>(SendMessageW(Control(cboMarkSTART), CB_GETCURSEL, 0, 0)));
            Close();
        } else if (id == cmdCancel) {
            Close();
        } else if (id == cmdHelp) {
            Help();  // as the F1 key does; the platform refuses to post the message that this key makes
        }
    }

    void Notify(const NMHDR& header) override {
        const auto& change = reinterpret_cast<const NMTREEVIEWW&>(header);
        if (header.code == TVN_ITEMEXPANDEDW && (change.action & TVE_COLLAPSE) != 0) {
            TreeView_Expand(header.hwndFrom, change.itemNew.hItem, TVE_EXPAND);
        }
        if (header.code != TVN_SELCHANGEDW || !Filled_) return;
        Dialog_.ClickNode(Tree_.Key(change));
        SetText(txtInfo, Dialog_.txtInfo);
    }

    void Help() override {
        if (!Dialog_.HelpEnabled() || platform::ShowHelp(Window(), Dialog_.HelpFile, Dialog_.HelpTopic)) return;
        platform::ShowMessage(Dialog_.Caption, ResourceText(HelpFailedText, Dialog_.HelpFile));
    }

    void AddLine(int id, UINT message, const std::string& line) {
        SendMessageW(Control(id), message, 0, reinterpret_cast<LPARAM>(platform::Wide(line).c_str()));
    }

    dlgSetup& Dialog_;
    platform::TreeWindow Tree_;
    bool Filled_ = false;
};

}  // namespace

void ShowModal(dlgSetup& dialog) {
    SetupWindow(dialog).ShowModal(GetActiveWindow());
}

}  // namespace corvane
