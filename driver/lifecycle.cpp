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
    uintptr_t Token;  // the number that the host thread keeps; 0: the state belongs to no thread any more
    std::unique_ptr<DriverState> State;
    bool Left = false;  // its last object is gone, and its recording thread was still in the vendor library
};

// All states; any thread may look one up. A thread's own state is found by the token that the thread keeps. No token is
// used twice. The system's thread ids and the addresses of states are used again later: with these a new thread could
// get the device of a dead one. The lock is held only briefly, and no call that needs the loader's lock is made
// meanwhile: LeaveThread may be called while that lock is held. Neither is destroyed when the process ends: a recording
// thread may still be in the vendor library, or may have been ended there by the system.
std::vector<ThreadEntry>& ThreadEntries = *new std::vector<ThreadEntry>;
platform::Mutex& EntriesLock = *new platform::Mutex;
std::atomic<uintptr_t> LastToken = 0;

// The calling thread's state; null: it has none. The lock must be held.
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

// Counts one object less. True when it was the last of the state; no thread finds the state from then on.
bool ReleaseInstance(DriverState& state) {
    const std::lock_guard lock(EntriesLock);
    if (--state.Instances > 0) return false;
    EntryOf(state)->Token = 0;
    return true;
}

// Removes the state from the list and hands it over, so that it is freed without the lock.
std::unique_ptr<DriverState> Remove(DriverState& state) {
    const std::lock_guard lock(EntriesLock);
    const auto entry = EntryOf(state);
    std::unique_ptr<DriverState> removed = std::move(entry->State);
    ThreadEntries.erase(entry);
    return removed;
}

// Removes a state that was left and whose recording thread has come back since; null: there is none.
std::unique_ptr<DriverState> RemoveLeft() {
    const std::lock_guard lock(EntriesLock);
    const auto entry = std::find_if(ThreadEntries.begin(), ThreadEntries.end(), [](const ThreadEntry& each) {
        return each.Left && !each.State->Engine.Thread.Running();
    });
    if (entry == ThreadEntries.end()) return nullptr;
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
    while (const std::unique_ptr<DriverState> left = RemoveLeft()) CloseModules(left->Engine);
    std::unique_ptr<DriverState> made = MakeState();
    made->Instances = 1;
    const uintptr_t token = ++LastToken;
    if (!platform::SetThreadToken(token)) throw std::bad_alloc();
    const std::lock_guard lock(EntriesLock);
    ThreadEntries.push_back({token, std::move(made), false});
    return *ThreadEntries.back().State;
}

void DetachObject(DriverState& state) noexcept {
    if (!ReleaseInstance(state)) return;
    bool closed = false;
    try {
        closed = CloseDevice(state.Engine);
        SaveSettings(state.Settings, state.Input, state.Crate);
    } catch (...) {
        // There is no object left that could report it.
    }
    if (closed) {
        Remove(state);
        return;
    }
    // A recording thread that has not ended may still use the state. Both then stay, and the library stays loaded.
    const std::lock_guard lock(EntriesLock);
    EntryOf(state)->Left = true;
}

void LeaveThread() noexcept {
    if (platform::ThreadToken() == 0) return;
    const std::lock_guard lock(EntriesLock);
    if (DriverState* state = FindState()) state->Engine.Busy = false;
}

void CloseWhatIsLeft() noexcept {
    for (ThreadEntry& entry : ThreadEntries) CloseModules(entry.State->Engine);
    delete &ThreadEntries;
    delete &EntriesLock;
}

}  // namespace corvane
