// The state of a host thread: made for the first driver object on it, closed with the last.
#pragma once

#include "driver/driver_state.h"

namespace corvane {

// State of the calling thread, with one more object on it. Throws std::bad_alloc.
DriverState& AttachObject();

// One object less. The last one ends a recording, closes the device, saves the settings and frees the state. Works on
// any thread, so that a host that releases an object on the wrong one still closes the device. A recording thread that
// doesn't come back from the vendor library is left behind with the state that it works on.
void DetachObject(DriverState& state) noexcept;

// The calling thread ends. Nobody may use objects that it leaves behind: their recording is asked to stop. Waits for
// nothing, and may be called with the loader's lock held.
void LeaveThread() noexcept;

// The library is being unloaded: closes the modules of all states that are left and frees these. No recording thread
// may live.
void CloseWhatIsLeft() noexcept;

}  // namespace corvane
