// The two settings that outlive the driver: the rate and the START mark mode, kept per user in the registry. Failure is
// silent: the built-in 10 Hz and mode 0 stay.
#pragma once

#include "driver/model/crate_info.h"
#include "driver/model/input_state.h"
#include "settings/registry/settings_location.h"

namespace corvane {

// Called once for a host thread, when its first driver object is made and has its defaults. The rate is taken as
// stored; opening the device, or reading Rate, changes it to one that the module has.
void LoadSettings(SettingsLocation& location, InputState& input, CrateInfo& crate);

// Called once for a host thread, when its last driver object has closed the device.
void SaveSettings(SettingsLocation& location, const InputState& input, const CrateInfo& crate);

}  // namespace corvane
