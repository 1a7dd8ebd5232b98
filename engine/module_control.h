// Stopping the opened modules.
#pragma once

#include "driver/model/engine_state.h"

namespace corvane {

// Clears the busy flag, then stops every opened module. Called by the recording thread at its end, otherwise only while
// there is no recording thread or it is suspended.
void StopAllModules(EngineState& engine);

}  // namespace corvane
