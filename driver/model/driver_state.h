// All state of one host thread. Made by the first driver object on the thread, closed by the last.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "driver/model/channel_model.h"
#include "driver/model/crate_list.h"
#include "driver/model/engine_state.h"
#include "driver/model/input_state.h"
#include "hardware/TLTR27API.h"
#include "hardware/TLTRAPI.h"
#include "settings/cRegistry.h"

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
    std::vector<CrateListEntry> CrateList;
    int16_t CrateListCount = 0;   // valid entries; -1: the last search could not ask its server
    std::string SettingsKeyPath;  // below HKEY_CURRENT_USER
    cRegistry SettingsRegistry;   // points there
    std::string HelpFile;         // full path; empty: there is none
    TLTR27API ModuleApi;
    TLTRAPI CrateApi;
};

}  // namespace corvane
