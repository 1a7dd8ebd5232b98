// The setup dialog.
#pragma once

#include "driver/model/driver_state.h"

namespace corvane {

// Shows the dialog modally, unless a recording is under way. Always false: the host has nothing to do afterwards.
bool ShowSetting(DriverState& state);

}  // namespace corvane
