// The platform's viewer of .chm files.
#pragma once

#include <windows.h>

#include <cstdint>
#include <string>

namespace corvane::platform {

// Opens the topic with that context number; its window closes together with `window`. False when that fails.
bool ShowHelp(HWND window, const std::string& file, int32_t topic);

}  // namespace corvane::platform
