// The IP address list: where the user picks another LTR server.
#pragma once

#include <cstdint>

#include "driver/model/driver_state.h"

namespace corvane {

// Address of the server that the user chose; 0 when none was chosen.
uint32_t SelectIP(DriverState& state);

}  // namespace corvane
