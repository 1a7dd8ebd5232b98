#include "platform/threads.h"

#include <windows.h>

namespace corvane::platform {

namespace {

// Committed stack of a recording thread. The reserve stays the executable's default, so the thread may grow beyond it.
constexpr SIZE_T ThreadStackBytes = 8192;

}  // namespace

struct Thread::Implementation {
    HANDLE Handle = nullptr;
    ThreadProcedure Procedure = nullptr;
    void* Argument = nullptr;

    // Realigns the stack through the compiler's -mstackrealign: the platform calls with 4-byte alignment.
    static DWORD WINAPI Run(void* self) {
        const auto* thread = static_cast<const Implementation*>(self);
        thread->Procedure(thread->Argument);
        return 0;
    }
};

Thread::Thread() : Implementation_(std::make_unique<Implementation>()) {}

Thread::~Thread() {
    WaitEnd(0);
}

bool Thread::Create(ThreadProcedure procedure, void* argument) {
    if (Running()) return false;
    Implementation_->Procedure = procedure;
    Implementation_->Argument = argument;
    DWORD id = 0;
    Implementation_->Handle =
        CreateThread(nullptr, ThreadStackBytes, &Implementation::Run, Implementation_.get(), CREATE_SUSPENDED, &id);
    return Implementation_->Handle != nullptr;
}

void Thread::Resume() {
    ResumeThread(Implementation_->Handle);
}

bool Thread::WaitEnd(uint32_t timeoutMs) {
    if (Implementation_->Handle == nullptr) return true;
    if (WaitForSingleObject(Implementation_->Handle, timeoutMs) != WAIT_OBJECT_0) return false;
    CloseHandle(Implementation_->Handle);
    Implementation_->Handle = nullptr;
    return true;
}

uint64_t CurrentThreadId() {
    return GetCurrentThreadId();
}

uint32_t TickCount() {
    return GetTickCount();
}

void SleepMs(uint32_t milliseconds) {
    Sleep(milliseconds);
}

struct Mutex::Implementation {
    CRITICAL_SECTION Section;
};

Mutex::Mutex() : Implementation_(std::make_unique<Implementation>()) {
    InitializeCriticalSection(&Implementation_->Section);
}

Mutex::~Mutex() {
    DeleteCriticalSection(&Implementation_->Section);
}

void Mutex::lock() {
    EnterCriticalSection(&Implementation_->Section);
}

void Mutex::unlock() {
    LeaveCriticalSection(&Implementation_->Section);
}

}  // namespace corvane::platform
