// What the event log says of recordings. For the host's thread.
#pragma once

#include <string>

#include "driver/model/crate_info.h"
#include "driver/model/engine_state.h"
#include "driver/model/input_state.h"

namespace corvane {

// The recording that has just begun.
void LogStarted(EngineState& engine, const CrateInfo& crate);

// The last recording's kadrs and gaps, at the first call after its thread has ended.
void LogEnded(EngineState& engine);

}  // namespace corvane
