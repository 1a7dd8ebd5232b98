#include "platform/component_version.h"

namespace corvane::platform {

// As in the version record that only the Windows build carries.
std::string ComponentVersion() {
    return "3.2.1";
}

}  // namespace corvane::platform
