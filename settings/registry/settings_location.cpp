#include "settings/registry/settings_location.h"

namespace corvane {

bool GoToSettings(SettingsLocation& location) {
    cRegistry& registry = location.SettingsRegistry;
    registry.SetRootKey(platform::CurrentUserRoot);
    registry.SetKeyPath(location.SettingsKeyPath);
    return registry.RootKey() == platform::CurrentUserRoot && registry.KeyPath() == location.SettingsKeyPath;
}

}  // namespace corvane
