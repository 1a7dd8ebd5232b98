#include "driver/lifecycle.h"

#include <algorithm>
#include <atomic>
#include <mutex>
#include <vector>

#include "common/mTypes3.h"
#include "engine/device.h"
#include "engine/driver_settings.h"
#include "platform/threads.h"
#include "selection/mQuorn.h"

namespace corvane {

namespace {

struct ThreadEntry {
    uint64_t ThreadId;
    std::unique_ptr<DriverState> State;
};

// A list under a lock rather than a thread-local variable: it is touched only when objects come and go, it lets the
// component be unloaded, and it finds the state from any thread.
std::vector<ThreadEntry> ThreadEntries;
platform::Mutex EntriesLock;
std::atomic<bool> ThreadLeftBehind = false;

std::unique_ptr<DriverState> MakeState() {
    auto state = std::make_unique<DriverState>();
    state->Device.ADCName = "LTR27";
    InitSettingsLocation(*state, state->Device.ADCName);
    SetHelpFile(*state);
    SetDefaultModel(state->Device);
    LoadSettings(*state);
    return state;
}

// Takes the state off the list; null when objects remain on it.
std::unique_ptr<DriverState> ReleaseInstance(DriverState& state) {
    const std::lock_guard lock(EntriesLock);
    if (--state.Instances > 0) return nullptr;
    const auto entry = std::find_if(ThreadEntries.begin(), ThreadEntries.end(),
                                    [&](const ThreadEntry& each) { return each.State.get() == &state; });
    std::unique_ptr<DriverState> last = std::move(entry->State);
    ThreadEntries.erase(entry);
    return last;
}

}  // namespace

DriverState& AttachObject() {
    const uint64_t thread = platform::CurrentThreadId();
    const std::lock_guard lock(EntriesLock);
    auto entry = std::find_if(ThreadEntries.begin(), ThreadEntries.end(),
                              [&](const ThreadEntry& each) { return each.ThreadId == thread; });
    if (entry == ThreadEntries.end()) {
        ThreadEntries.push_back({thread, MakeState()});
        entry = ThreadEntries.end() - 1;
    }
    entry->State->Instances++;
    return *entry->State;
}

void DetachObject(DriverState& state) noexcept {
    std::unique_ptr<DriverState> last = ReleaseInstance(state);
    if (!last) return;
    bool closed = false;
    try {
        closed = CloseDevice(*last);
        SaveSettings(*last);
    } catch (...) {
        // Nobody is left to be told.
    }
    if (!closed) {
        // The thread may still touch the state, so it stays for good, and so does the code.
        ThreadLeftBehind = true;
        static_cast<void>(last.release());
    }
}

bool DriverMustStayLoaded() {
    return ThreadLeftBehind;
}

}  // namespace corvane
