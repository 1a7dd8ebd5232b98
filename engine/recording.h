// Starting and stopping a recording.
#pragma once

#include <string>

#include "driver/model/crate_info.h"
#include "driver/model/engine_state.h"
#include "driver/model/input_state.h"

namespace corvane {

// Starts a recording; the device must be open. False with a message in lastError (empty when the ring can't be
// allocated, or when no selected channel has an opened module); nothing runs then.
bool StartRecording(EngineState& engine, InputState& input, const CrateInfo& crate, std::string& lastError);

// Asks the recording to end and returns when its thread has ended, at most two block periods later. The thread may need
// longer, up to its receive time-out; until its end a new start is refused.
void StopRecording(EngineState& engine);

}  // namespace corvane
