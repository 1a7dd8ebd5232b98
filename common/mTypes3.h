// Services for the whole driver: where its settings are kept, and its numbered texts.
#pragma once

#include <cstdint>
#include <string>

#include "settings/registry/settings_location.h"

namespace corvane {

// Derives the settings location from a device name and points SettingsRegistry to it. A missing key is created, and the
// name is written as the key's default value. driverName becomes the name only if it was empty. When the key can be
// neither opened nor created, SettingsRegistry stays where it was, and nothing is written.
void InitSettingsLocation(SettingsLocation& location, std::string& driverName, const std::string& name);

// The numbered text in the user's language with its placeholders filled in; empty when there is none.
std::string ResourceText(int32_t number, const std::string& a1 = {}, const std::string& a2 = {},
                         const std::string& a3 = {});

// The template with its placeholders "%1" to "%5" filled in by the platform's rules for message texts. A template that
// the platform rejects, that asks for a sixth argument or for anything but a text, or whose result is empty or longer
// than the template and twice the arguments, comes back without its percent signs.
std::string FormatText(const std::string& pattern, const std::string& a1, const std::string& a2, const std::string& a3,
                       const std::string& a4, const std::string& a5);

}  // namespace corvane
