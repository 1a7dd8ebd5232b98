// The component's own module: its resources and its path.
#pragma once

#include <windows.h>

#include <string>

namespace corvane::platform {

HMODULE ComponentModule();

// Full path of the component's file. Throws std::runtime_error.
std::wstring ComponentPath();

}  // namespace corvane::platform
