// Small services shared by the whole driver: where the settings live.
#pragma once

#include <string>

#include "driver/model/driver_state.h"

namespace corvane {

// Derives the settings location from a device name. The first name given stays the driver's name.
void InitSettingsLocation(DriverState& state, const std::string& name);

}  // namespace corvane
