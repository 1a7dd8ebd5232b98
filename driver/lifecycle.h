// The state of a host thread: made for the first driver object on it, closed with the last.
#pragma once

#include "driver/driver_state.h"

namespace corvane {

// State of the calling thread, with one more object on it. Throws std::bad_alloc.
DriverState& AttachObject();

// One object less. The last one ends a recording, closes the device, saves the settings and frees the state. Works on
// any thread, so that a host that releases an object on the wrong thread still closes the device. When a recording
// thread does not return from the vendor library, the thread and the state that it works on remain; the next state that
// is made after its return closes what it had open.
void DetachObject(DriverState& state) noexcept;

// Called when the calling thread ends. Its objects, if it has not released them, must not be used any more: their
// recording is asked to stop. Waits for no other thread's work, and may be called with the loader's lock held.
void LeaveThread() noexcept;

// Called when the library is unloaded: closes the modules of all states that are left and frees the states. No
// recording thread may be running, and nothing here may be called afterwards.
void CloseWhatIsLeft() noexcept;

}  // namespace corvane
