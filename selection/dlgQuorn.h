// The Select Device dialog: which of several crates to use.
#pragma once

#include "driver/model/driver_state.h"

namespace corvane {

// Index of the chosen entry of CrateList; -1 when none was chosen.
int SelectDevice(DriverState& state);

}  // namespace corvane
