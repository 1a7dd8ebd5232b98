// The component's own file.
#pragma once

#include <string>

namespace corvane::platform {

// Folder that holds the component's file, without a separator at its end; UTF-8.
std::string ComponentFolder();

}  // namespace corvane::platform
