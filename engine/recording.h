// Starting and stopping a recording.
#pragma once

#include "driver/model/driver_state.h"

namespace corvane {

// Starts a recording; the device must be open. False with a message in LastError (none when the ring can't be
// allocated); nothing runs then.
bool StartRecording(DriverState& state);

// Asks the recording to end and returns when its thread has ended, at most two block periods later. The thread may need
// longer, up to its receive time-out; until its end a new start is refused.
void StopRecording(DriverState& state);

}  // namespace corvane
