// The component's version.
#pragma once

#include <string>

namespace corvane::platform {

// Major, minor and revision number, joined by dots; the version record's third number is not shown anywhere. Empty when
// the component carries no version.
std::string ComponentVersion();

}  // namespace corvane::platform
