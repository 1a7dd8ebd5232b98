// The two settings that outlive the driver: the rate and the START mark mode.
#pragma once

#include "driver/model/driver_state.h"

namespace corvane {

void LoadSettings(DriverState& state);
void SaveSettings(const DriverState& state);

}  // namespace corvane
