// The state of a host thread: made for the first driver object on it, closed with the last.
#pragma once

#include "driver/model/driver_state.h"

namespace corvane {

// State of the calling thread, with one more object on it.
DriverState& AttachObject();

// One object less. The last one ends a recording, closes the device, saves the settings and frees the state. Works on
// any thread, so that a host that releases an object on the wrong one still closes the device.
void DetachObject(DriverState& state) noexcept;

// True once a recording thread was left behind inside the vendor library: the code it runs in must stay in memory.
bool DriverMustStayLoaded();

}  // namespace corvane
