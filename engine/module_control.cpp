#include "engine/module_control.h"

namespace corvane {

void StopAllModules(EngineState& engine) {
    engine.Busy = false;
    for (ModuleRecord& module : engine.Opened()) engine.ModuleApi.ADCStop(module.Handle);
}

}  // namespace corvane
