#include "engine/module_control.h"

namespace corvane {

void StopAllModules(DriverState& state) {
    state.Engine.Busy = false;
    for (ModuleRecord& module : state.Engine.Opened()) state.ModuleApi.ADCStop(module.Handle);
}

}  // namespace corvane
