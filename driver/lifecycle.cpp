#include "driver/lifecycle.h"

#include <corvane_version.h>

#include <algorithm>
#include <atomic>
#include <memory>
#include <mutex>
#include <new>
#include <vector>

#include "common/mTypes3.h"
#include "engine/device.h"
#include "engine/driver_settings.h"
#include "platform/component.h"
#include "platform/event_log.h"
#include "platform/threads.h"
#include "selection/mQuorn.h"

namespace corvane {

namespace {

struct ThreadEntry {
    uintptr_t Token;  // what the state's host thread keeps; 0: no thread's any more
    std::unique_ptr<DriverState> State;
};

// All states, so that they are found from any thread. Which one is the calling thread's, the token that it keeps says:
// a running number, because the ids of threads and the addresses of states come again and would hand a dead thread's
// device on to a new one. Held for moments only, and never while the system is asked for anything: LeaveThread comes
// with the loader's lock held.
std::vector<ThreadEntry> ThreadEntries;
platform::Mutex EntriesLock;
std::atomic<uintptr_t> LastToken = 0;

// The calling thread's state, with the lock held; null: it has none.
DriverState* FindState() {
    const uintptr_t token = platform::ThreadToken();
    for (const ThreadEntry& entry : ThreadEntries) {
        if (token != 0 && entry.Token == token) return entry.State.get();
    }
    return nullptr;
}

auto EntryOf(const DriverState& state) {
    return std::find_if(ThreadEntries.begin(), ThreadEntries.end(),
                        [&](const ThreadEntry& each) { return each.State.get() == &state; });
}

std::unique_ptr<DriverState> MakeState() {
    platform::LogEvent([&] {
        return "Corvane " CORVANE_VERSION ": " + platform::ComponentFile() + ", host " + platform::HostProgram();
    });
    auto state = std::make_unique<DriverState>();
    state->Device.ADCName = "LTR27";
    InitSettingsLocation(state->Settings, state->Device.DriverName, state->Device.ADCName);
    SetHelpFile(state->HelpFile);
    InitDefaults(state->Device);
    LoadSettings(state->Settings, state->Input, state->Crate);
    return state;
}

// Takes note that an object is gone. True when it was the state's last; no thread finds the state then.
bool ReleaseInstance(DriverState& state) {
    const std::lock_guard lock(EntriesLock);
    if (--state.Instances > 0) return false;
    EntryOf(state)->Token = 0;
    return true;
}

// Takes the state off the list.
std::unique_ptr<DriverState> Remove(DriverState& state) {
    const std::lock_guard lock(EntriesLock);
    const auto entry = EntryOf(state);
    std::unique_ptr<DriverState> removed = std::move(entry->State);
    ThreadEntries.erase(entry);
    return removed;
}

}  // namespace

DriverState& AttachObject() {
    {
        const std::lock_guard lock(EntriesLock);
        if (DriverState* state = FindState()) {
            state->Instances++;
            return *state;
        }
    }
    std::unique_ptr<DriverState> made = MakeState();
    made->Instances = 1;
    const uintptr_t token = ++LastToken;
    if (!platform::SetThreadToken(token)) throw std::bad_alloc();
    const std::lock_guard lock(EntriesLock);
    ThreadEntries.push_back({token, std::move(made)});
    return *ThreadEntries.back().State;
}

void DetachObject(DriverState& state) noexcept {
    if (!ReleaseInstance(state)) return;
    bool closed = false;
    try {
        closed = CloseDevice(state.Engine);
        SaveSettings(state.Settings, state.Input, state.Crate);
    } catch (...) {
        // Nobody is left to be told.
    }
    // A recording thread that has not come back may still touch the state: it stays, as the code does.
    if (closed) Remove(state);
}

void LeaveThread() noexcept {
    if (platform::ThreadToken() == 0) return;
    const std::lock_guard lock(EntriesLock);
    if (DriverState* state = FindState()) state->Engine.Busy = false;
}

void CloseWhatIsLeft() noexcept {
    for (ThreadEntry& entry : ThreadEntries) CloseModules(entry.State->Engine);
    ThreadEntries.clear();
}

}  // namespace corvane
