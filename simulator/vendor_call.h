// What every simulated function does around its own work: count the call, find the connection that the record holds,
// refuse a second thread, ask the faults. No exception gets out.
#pragma once

#include <memory>

#include "simulator/error_codes.h"
#include "simulator/world.h"

namespace ltrsim {

// Sets a connection's InCall flag for the time of one call, unless another call has set it.
class CallGuard {
public:
    explicit CallGuard(Connection& connection) : Held_(connection), Owned_(!connection.InCall.exchange(true)) {}
    ~CallGuard() {
        if (Owned_) Held_.InCall.store(false);
    }
    CallGuard(const CallGuard&) = delete;
    CallGuard& operator=(const CallGuard&) = delete;
    bool Alone() const { return Owned_; }

private:
    Connection& Held_;
    const bool Owned_;
};

// Runs `body(world)` of an exported function.
template <class Body>
int32_t VendorCall(const char* function, Body body) noexcept {
    try {
        World& world = World::Instance();
        return world.Enter(function) ? body(world) : ScenarioBroken;
    } catch (...) {
        return InternalError;
    }
}

// Runs `body(connection, verdict)` unless another thread is inside the same connection or a fault refuses the call.
template <class Connected, class Body>
int32_t ConnectedCall(World& world, const char* function, const std::shared_ptr<Connected>& connection, Body body) {
    if (!connection) return world.Violation(function, "the record is not open", NotOpen);
    const CallGuard guard(*connection);
    if (!guard.Alone()) return world.Violation(function, "another thread is using this record", RecordBusy);
    const Verdict verdict = world.Judge(function, connection->Where);
    return verdict.Error != Success ? verdict.Error : body(*connection, verdict);
}

// Closes a connection, even when a fault makes the call fail. Closing what is not open is harmless.
template <class Connected, class Close>
int32_t CloseCall(World& world, const char* function, const std::shared_ptr<Connected>& connection, Close close) {
    if (!connection) return NotOpen;
    const CallGuard guard(*connection);
    if (!guard.Alone()) return world.Violation(function, "another thread is using this record", RecordBusy);
    const Verdict verdict = world.Judge(function, connection->Where);
    close();
    return verdict.Error;
}

// Text of a result code; for a broken scenario, what is wrong with it.
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
