#include "platform/threads.h"

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

#include "platform/portable/test_hooks.h"

namespace corvane::platform {

std::atomic<bool> SkipSleeps = false;
std::atomic<bool> FailThreadCreation = false;

namespace {

thread_local uintptr_t Token = 0;

}  // namespace

struct Thread::Implementation {
    std::thread Worker;
    std::mutex Lock;
    std::condition_variable Changed;
    bool Resumed = false;
    bool Ended = false;

    void Run(ThreadProcedure procedure, void* argument) {
        {
            std::unique_lock lock(Lock);
            Changed.wait(lock, [this] { return Resumed; });
        }
        procedure(argument);
        const std::lock_guard lock(Lock);
        Ended = true;
        Changed.notify_all();
    }
};

Thread::Thread() : Implementation_(std::make_unique<Implementation>()) {}

Thread::~Thread() {
    WaitEnd(0);
}

bool Thread::Create(ThreadProcedure procedure, void* argument) {
    if (Running() || FailThreadCreation) return false;
    Implementation_->Resumed = Implementation_->Ended = false;
    try {
        Implementation_->Worker = std::thread(&Implementation::Run, Implementation_.get(), procedure, argument);
    } catch (const std::system_error&) {
        return false;
    }
    return true;
}

void Thread::Resume() {
    const std::lock_guard lock(Implementation_->Lock);
    Implementation_->Resumed = true;
    Implementation_->Changed.notify_all();
}

bool Thread::WaitEnd(uint32_t timeoutMs) {
    if (!Implementation_->Worker.joinable()) return true;
    {
        std::unique_lock lock(Implementation_->Lock);
        const auto ended = [this] { return Implementation_->Ended; };
        if (!Implementation_->Changed.wait_for(lock, std::chrono::milliseconds(timeoutMs), ended)) return false;
    }
    Implementation_->Worker.join();
    return true;
}

uintptr_t ThreadToken() {
    return Token;
}

bool SetThreadToken(uintptr_t token) {
    Token = token;
    return true;
}

uint32_t TickCount() {
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    return static_cast<uint32_t>(std::chrono::duration_cast<std::chrono::milliseconds>(now).count());
}

void SleepMs(uint32_t milliseconds) {
    if (SkipSleeps) {
        std::this_thread::yield();
    } else {
        std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
    }
}

struct Mutex::Implementation {
    std::mutex Lock;
};

Mutex::Mutex() : Implementation_(std::make_unique<Implementation>()) {}

Mutex::~Mutex() = default;

void Mutex::lock() {
    Implementation_->Lock.lock();
}

void Mutex::unlock() {
    Implementation_->Lock.unlock();
}

}  // namespace corvane::platform
