// All state of one host thread. Made by the first driver object on the thread, closed by the last. Only the lifecycle
// and the members of the object know the whole; everything below is given the parts that it works on.
#pragma once

#include <cstdint>
#include <string>

#include "driver/model/channel_model.h"
#include "driver/model/crate_info.h"
#include "driver/model/engine_state.h"
#include "driver/model/input_state.h"
#include "selection/crate_list.h"
#include "settings/registry/settings_location.h"

namespace corvane {

struct DriverState {
    int32_t Instances = 0;       // live driver objects
    bool Detected = false;       // modules are open
    bool InDialog = false;       // a member that may show a dialog is at work
    int16_t LastOpenResult = 0;  // the last opening attempt as the host's Boolean: -1 or 0
    DeviceInfo Device;
    InputState Input;
    EngineState Engine;
    CrateInfo Crate;
    CrateSearch Search;
    SettingsLocation Settings;
    std::string HelpFile;  // full path; empty: there is none
};

}  // namespace corvane
