// The component's icons, by their numbers in Corvane.rc.
#pragma once

namespace corvane {

constexpr int WindowIcon = 1;
constexpr int TreeIcons[] = {2, 3};  // the pictures of trees, in order: the crate, the module

// As TreeNode::Picture counts the tree icons.
constexpr int CratePicture = 1;
constexpr int ModulePicture = 2;

}  // namespace corvane
