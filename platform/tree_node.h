// One line of a tree view.
#pragma once

#include <string>

namespace corvane::platform {

constexpr int CratePicture = 1;  // numbers of the pictures that all trees share
constexpr int ModulePicture = 2;

struct TreeNode {
    std::string Key;  // names the node among the tree's nodes
    std::string Text;
    int Picture = CratePicture;
    int Parent = -1;  // index of an earlier node; -1: none
};

}  // namespace corvane::platform
