// The window of the Select Device dialog.
#include "platform/win32/component_module.h"
#include "platform/win32/dialog_window.h"
#include "platform/win32/tree_window.h"
#include "resources/icons.h"
#include "selection/dlgQuorn.h"

namespace corvane {

namespace {

constexpr int ClientWidth = 3210, ClientHeight = 3375;
constexpr int PictureSize = 240;  // twips: 16 pixels at 96 dots per inch
enum Id { cmdOK = IDOK, cmdCancel = IDCANCEL, NameOfTree = 100, tvwLTR };

class QuornWindow final : public platform::DialogWindow {
public:
    explicit QuornWindow(dlgQuorn& dialog) : DialogWindow(dialog.Caption, ClientWidth, ClientHeight), Dialog_(dialog) {
        constexpr DWORD TreeStyle = WS_VISIBLE | WS_TABSTOP | TVS_HASLINES | TVS_HASBUTTONS | TVS_LINESATROOT |
                                    TVS_SHOWSELALWAYS | TVS_DISABLEDRAGDROP;
        // Screen readers read the hidden label as the name of the tree. Cancel lies outside the window and serves only
        // the Esc key. It has a group of its own, so that the arrow keys don't lead there from OK.
        Controls = {
            {NameOfTree, WC_STATICW, 0, {0, 0, 0, 0}, dialog.Caption},
            {tvwLTR, WC_TREEVIEWW, TreeStyle, {90, 90, 3030, 2700}, {}, WS_EX_CLIENTEDGE},
            {cmdOK, WC_BUTTONW, WS_VISIBLE | WS_TABSTOP | WS_GROUP | BS_DEFPUSHBUTTON, {1028, 2910, 1155, 345}, "OK"},
            {cmdCancel, WC_BUTTONW, WS_VISIBLE | WS_GROUP, {ClientWidth + 300, 2910, 1155, 345}, "Cancel"},
        };
    }
    ~QuornWindow() override {
        if (Icon_ != nullptr) DestroyIcon(Icon_);
    }

private:
    void Loaded() override {
        Icon_ = static_cast<HICON>(LoadImageW(platform::ComponentModule(), MAKEINTRESOURCEW(WindowIcon), IMAGE_ICON,
                                              GetSystemMetrics(SM_CXSMICON), GetSystemMetrics(SM_CYSMICON), 0));
        if (Icon_ != nullptr) SendMessageW(Window(), WM_SETICON, ICON_SMALL, reinterpret_cast<LPARAM>(Icon_));
        Tree_.Fill(Control(tvwLTR), Dialog_.tvwLTR);
        ShowSelection();
    }

    void Placed() override { Tree_.LoadPictures(Control(tvwLTR), TreeIcons, Pixels(PictureSize)); }

    void Command(int id, int) override {
        if (id == cmdCancel) Dialog_.PressCancel();
        if (id == cmdCancel || id == cmdOK) Close();
    }

    void Notify(const NMHDR& header) override {
        if (header.code != TVN_SELCHANGEDW) return;
        Dialog_.ClickNode(Tree_.Key(reinterpret_cast<const NMTREEVIEWW&>(header)));
        ShowSelection();
    }

    void ShowSelection() {
        for (const platform::TreeNode& node : Dialog_.tvwLTR) Tree_.SetBold(node.Key, Dialog_.Bold(node.Key));
        EnableWindow(Control(cmdOK), Dialog_.OKEnabled());
    }

    dlgQuorn& Dialog_;
    platform::TreeWindow Tree_;
    HICON Icon_ = nullptr;
};

}  // namespace

void ShowModal(dlgQuorn& dialog) {
    if (!QuornWindow(dialog).ShowModal(GetActiveWindow())) dialog.PressCancel();
}

}  // namespace corvane
