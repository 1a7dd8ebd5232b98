#include "simulator/control.h"

#include <limits>

#include "simulator/world.h"

using ltrsim::World;

namespace {

// Runs `body(world)`; `failed` answers when memory has run out.
template <class Result, class Body>
Result Guarded(Result failed, Body body) noexcept {
    try {
        return body(World::Instance());
    } catch (...) {
        return failed;
    }
}

}  // namespace

int32_t LTRSIM_CALL LtrSim_Configure(const char* tomlText) {
    return Guarded(-1, [&](World& world) { return world.Configure(tomlText) ? 0 : -1; });
}

const char* LTRSIM_CALL LtrSim_Message() {
    return Guarded("", [](World& world) { return world.Message(); });
}

int32_t LTRSIM_CALL LtrSim_Violations() {
    return Guarded(-1, [](World& world) { return world.Violations(); });
}

int32_t LTRSIM_CALL LtrSim_Calls(const char* function) {
    return Guarded(-1, [&](World& world) { return function ? world.Calls(function) : -1; });
}

int32_t LTRSIM_CALL LtrSim_DelayedCalls() {
    return Guarded(-1, [](World& world) { return world.DelayedCalls(); });
}

int32_t LTRSIM_CALL LtrSim_OpenConnections() {
    return Guarded(-1, [](World& world) { return world.OpenConnections(); });
}

int32_t LTRSIM_CALL LtrSim_RunningModules() {
    return Guarded(-1, [](World& world) { return world.RunningModules(); });
}

int32_t LTRSIM_CALL LtrSim_LastMarkMode() {
    return Guarded(-1, [](World& world) { return world.LastMarkMode(); });
}

int32_t LTRSIM_CALL LtrSim_LastConfigWord(int32_t index) {
    return Guarded(-1, [&](World& world) { return world.LastConfigWord(index); });
}

double LTRSIM_CALL LtrSim_ExpectedCode(int32_t slot, int32_t channel, int64_t kadr, double rate) {
    return Guarded(std::numeric_limits<double>::quiet_NaN(),
                   [&](World& world) { return world.ExpectedCode(slot, channel, kadr, rate); });
}

int32_t LTRSIM_CALL LtrSim_AddFault(const char* tomlText) {
    return Guarded(-1, [&](World& world) { return world.AddFault(tomlText) ? 0 : -1; });
}

void LTRSIM_CALL LtrSim_ClearFaults() {
    Guarded(0, [](World& world) {
        world.ClearFaults();
        return 0;
    });
}
