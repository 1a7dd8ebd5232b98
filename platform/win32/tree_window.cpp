#include "platform/win32/tree_window.h"

#include "platform/win32/component_module.h"
#include "platform/win32/wide_text.h"

namespace corvane::platform {

TreeWindow::~TreeWindow() {
    if (Pictures_ != nullptr) ImageList_Destroy(Pictures_);
}

void TreeWindow::LoadPictures(HWND tree, std::span<const int> icons, int size) {
    const HIMAGELIST pictures = ImageList_Create(size, size, ILC_COLOR32 | ILC_MASK, static_cast<int>(icons.size()), 0);
    for (const int number : icons) {
        const HANDLE icon =
            LoadImageW(ComponentModule(), MAKEINTRESOURCEW(number), IMAGE_ICON, size, size, LR_DEFAULTCOLOR);
        ImageList_ReplaceIcon(pictures, -1, static_cast<HICON>(icon));
        DestroyIcon(static_cast<HICON>(icon));
    }
    TreeView_SetImageList(tree, pictures, TVSIL_NORMAL);
    if (Pictures_ != nullptr) ImageList_Destroy(Pictures_);
    Pictures_ = pictures;
}

void TreeWindow::Fill(HWND tree, const std::vector<TreeNode>& nodes) {
    Tree_ = tree;
    Nodes_ = nodes;
    TreeView_DeleteAllItems(tree);
    Items_.assign(nodes.size(), nullptr);
    for (size_t i = 0; i < nodes.size(); i++) {
        const TreeNode& node = nodes[i];
        std::wstring text = Wide(node.Text);
        TVINSERTSTRUCTW insert = {};
        insert.hParent = node.Parent >= 0 ? Items_.at(static_cast<size_t>(node.Parent)) : TVI_ROOT;
        if (insert.hParent == nullptr) continue;
        insert.hInsertAfter = TVI_LAST;
        insert.item.mask = TVIF_TEXT | TVIF_PARAM | TVIF_IMAGE | TVIF_SELECTEDIMAGE;
        insert.item.pszText = text.data();
        insert.item.lParam = static_cast<LPARAM>(i);
        insert.item.iImage = insert.item.iSelectedImage = node.Picture - 1;
        Items_[i] = TreeView_InsertItem(tree, &insert);
    }
    for (const HTREEITEM item : Items_) TreeView_Expand(tree, item, TVE_EXPAND);
    if (!Items_.empty()) TreeView_Select(tree, Items_[0], TVGN_CARET);
}

void TreeWindow::SetBold(const std::string& key, bool bold) {
    for (size_t i = 0; i < Nodes_.size(); i++) {
        if (Nodes_[i].Key == key) TreeView_SetItemState(Tree_, Items_[i], bold ? TVIS_BOLD : 0u, TVIS_BOLD);
    }
}

}  // namespace corvane::platform
