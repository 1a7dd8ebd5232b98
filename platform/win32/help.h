// The platform's viewers of help: that of .chm files, and the user's browser for a page.
#pragma once

#include <windows.h>

#include <cstdint>
#include <string>

namespace corvane::platform {

// Opens a page (.html), or the topic with that context number in a .chm file, whose window closes together with
// `window`. False when that fails.
bool ShowHelp(HWND window, const std::string& file, int32_t topic);

}  // namespace corvane::platform
