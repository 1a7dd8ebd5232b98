// Opening and closing the device: the modules of one crate.
#pragma once

#include "driver/model/channel_model.h"
#include "driver/model/crate_info.h"
#include "driver/model/engine_state.h"
#include "driver/model/input_state.h"
#include "selection/crate_list.h"

namespace corvane {

// Looks for crates with modules named as ADCName, opens up to two modules of one crate, reads their descriptions and
// rebuilds the channel model. False with the failing step's message in LastError. A cancelled dialog leaves LastError
// as it was, and so does a search that finds no crate, unless one was asked for by its serial number.
bool OpenDevice(DeviceInfo& device, InputState& input, EngineState& engine, CrateInfo& crate, CrateSearch& search);

// Ends a recording, waits for its thread and closes every module. False when the thread never came back from the vendor
// library: nothing is closed then, and the state must stay.
bool CloseDevice(EngineState& engine);

// Closes the opened modules. No recording thread may be running.
void CloseModules(EngineState& engine);

}  // namespace corvane
