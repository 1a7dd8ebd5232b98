// The component's own file, and the program that has loaded it.
#pragma once

#include <string>

namespace corvane::platform {

// Folder that holds the component's file, without a separator at its end; UTF-8.
std::string ComponentFolder();

// Full paths, UTF-8; empty when the system doesn't tell.
std::string ComponentFile();
std::string HostProgram();

}  // namespace corvane::platform
