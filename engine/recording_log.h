// What the event log says of recordings. For the host's thread.
#pragma once

#include <string>

#include "driver/model/crate_info.h"
#include "driver/model/engine_state.h"
#include "driver/model/input_state.h"

namespace corvane {

// The recording that has just begun.
void LogStarted(EngineState& engine, const CrateInfo& crate);

// How many kadrs the last recording has, and its gaps, once its thread has ended and only the first time.
void LogEnded(EngineState& engine);

}  // namespace corvane
