// The component's own module, for its resources.
#pragma once

#include <windows.h>

#include <string>

namespace corvane::platform {

HMODULE ComponentModule();

}  // namespace corvane::platform
