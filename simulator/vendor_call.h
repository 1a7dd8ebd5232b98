// What every simulated function does around its own work: count the call, find the connection that the record holds,
// refuse a second thread, ask the faults. No exception passes.
#pragma once

#include <memory>

#include "simulator/error_codes.h"
#include "simulator/world.h"

namespace ltrsim {

// Holds a connection's InCall flag while the call lasts, if it was free.
class CallGuard {
public:
    explicit CallGuard(Connection& connection) : Held(connection), Owned(!connection.InCall.exchange(true)) {}
    ~CallGuard() {
        if (Owned) Held.InCall.store(false);
    }
    CallGuard(const CallGuard&) = delete;
    CallGuard& operator=(const CallGuard&) = delete;
    bool Alone() const { return Owned; }

private:
    Connection& Held;
    const bool Owned;
};

// Runs `body(world)` of an exported function.
template <typename Body>
int32_t VendorCall(const char* function, Body body) noexcept {
    try {
        World& world = World::Instance();
        return world.Enter(function) ? body(world) : ScenarioBroken;
    } catch (...) {
        return InternalError;
    }
}

// Runs `body(connection, verdict)` unless another thread is inside the same connection or a fault refuses the call.
template <typename Connected, typename Body>
int32_t ConnectedCall(World& world, const char* function, const std::shared_ptr<Connected>& connection, Body body) {
    if (!connection) return world.Violation(function, "the record is not open", NotOpen);
    const CallGuard guard(*connection);
    if (!guard.Alone()) return world.Violation(function, "another thread is using this record", RecordBusy);
    const Verdict verdict = world.Judge(function, connection->Where);
    return verdict.Error != Success ? verdict.Error : body(*connection, verdict);
}

// Ends a connection whatever the faults make of the call. Closing what is not open is harmless.
template <typename Connected, typename Close>
int32_t CloseCall(World& world, const char* function, const std::shared_ptr<Connected>& connection, Close close) {
    if (!connection) return NotOpen;
    const CallGuard guard(*connection);
    if (!guard.Alone()) return world.Violation(function, "another thread is using this record", RecordBusy);
    const Verdict verdict = world.Judge(function, connection->Where);
    close();
    return verdict.Error;
}

// Text of a result code; the reason itself for a broken scenario.
inline const char* VendorErrorText(const char* function, int32_t code) noexcept {
    try {
        World& world = World::Instance();
        world.Enter(function);
        const char* reason = code == ScenarioBroken ? world.BrokenReason() : nullptr;
        return reason ? reason : ErrorText(code);
    } catch (...) {
        return ErrorText(InternalError);
    }
}

}  // namespace ltrsim
