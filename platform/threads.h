// Threads, time and a lock, as far as the driver needs them.
#pragma once

#include <cstdint>
#include <memory>

namespace corvane::platform {

using ThreadProcedure = void (*)(void* argument);

// One thread: created suspended, started by Resume, and known to have ended only when WaitEnd says so. Until then the
// library with its code is not unloaded.
class Thread {
public:
    Thread();
    ~Thread();  // the thread must have ended, or never have been created
    Thread(const Thread&) = delete;
    Thread& operator=(const Thread&) = delete;

    // Creates the thread suspended. False when the platform refuses. An earlier one that has ended is forgotten.
    bool Create(ThreadProcedure procedure, void* argument);
    void Resume();
    // Waits up to `timeoutMs` for the thread's real end. True when no thread is left; its handle is released then.
    bool WaitEnd(uint32_t timeoutMs);
    // A thread was created whose end has not been seen.
    bool Running() { return !WaitEnd(0); }

private:
    struct Implementation;
    std::unique_ptr<Implementation> Implementation_;
};

// A number that the calling thread keeps: 0 in a new thread, even when the system gives it the id of an earlier one.
// SetThreadToken answers false when the platform has no room for it.
uintptr_t ThreadToken();
bool SetThreadToken(uintptr_t token);

// Milliseconds of the system's tick count; wraps after 49.7 days, so only differences mean something.
uint32_t TickCount();
void SleepMs(uint32_t milliseconds);

class Mutex {
public:
    Mutex();
    ~Mutex();
    Mutex(const Mutex&) = delete;
    Mutex& operator=(const Mutex&) = delete;
    void lock();  // the names that std::lock_guard calls
    void unlock();

private:
    struct Implementation;
    std::unique_ptr<Implementation> Implementation_;
};

}  // namespace corvane::platform
