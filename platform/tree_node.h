// One line of a tree view.
#pragma once

#include <string>

namespace corvane::platform {

struct TreeNode {
    std::string Key;  // names the node among the tree's nodes
    std::string Text;
    int Picture = 1;  // counted from 1 in the tree's list of pictures
    int Parent = -1;  // index of an earlier node; -1: none
};

}  // namespace corvane::platform
