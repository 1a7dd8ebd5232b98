// Immediate readings of single channels, straight from the modules. While a recording thread runs, it alone uses the
// modules: readings are 0 then, and the hardware is not touched.
#pragma once

#include <cstdint>
#include <vector>

#include "driver/model/engine_state.h"
#include "driver/model/input_state.h"

namespace corvane {

// One sample of a channel; 0 when the channel has no module or no mezzanine. A module is read at most every 400 ms;
// before that its last reading is returned.
int16_t ReadChannelNow(EngineState& engine, int16_t index);

// One sample of every selected channel.
std::vector<int16_t> ReadKadrNow(EngineState& engine, const InputState& input);

}  // namespace corvane
