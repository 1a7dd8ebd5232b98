// A tree view that shows a list of nodes, each with its key and a picture.
#pragma once

#include <windows.h>

#include <commctrl.h>

#include <span>
#include <string>
#include <vector>

#include "platform/tree_node.h"

namespace corvane::platform {

class TreeWindow {
public:
    TreeWindow() = default;
    ~TreeWindow();
    TreeWindow(const TreeWindow&) = delete;
    TreeWindow& operator=(const TreeWindow&) = delete;

    // Shows all nodes, expanded, the first one selected. A node that can't be added is left out, with those below it.
    void Fill(HWND tree, const std::vector<TreeNode>& nodes);

    // Loads the list of pictures, from the component's icons with these numbers. size: pixels.
    void LoadPictures(HWND tree, std::span<const int> icons, int size);

    void SetBold(const std::string& key, bool bold);
    const std::string& Key(const NMTREEVIEWW& change) const {
        return Nodes_.at(static_cast<size_t>(change.itemNew.lParam)).Key;
    }

private:
    HWND Tree_ = nullptr;
    HIMAGELIST Pictures_ = nullptr;
    std::vector<TreeNode> Nodes_;
    std::vector<HTREEITEM> Items_;  // of the nodes
};

}  // namespace corvane::platform
