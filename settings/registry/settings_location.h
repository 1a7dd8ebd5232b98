// Where the driver keeps its settings of a user: one key below HKEY_CURRENT_USER.
#pragma once

#include <string>

#include "settings/registry/cRegistry.h"

namespace corvane {

struct SettingsLocation {
    std::string SettingsKeyPath;  // below HKEY_CURRENT_USER
    cRegistry SettingsRegistry;   // points there
};

// Points SettingsRegistry at the settings. False when they have no key: nothing may be read or written then.
bool GoToSettings(SettingsLocation& location);

}  // namespace corvane
