#include "platform/threads.h"

#include <windows.h>

namespace corvane::platform {

namespace {

// Committed stack of a recording thread. What is reserved is the executable's default, so the stack can grow.
constexpr SIZE_T ThreadStackBytes = 8192;

// Not a thread_local variable: that would keep the component loaded for ever. When the component is unloaded, all of
// its slots are freed (driver/com/unloading.cpp).
const DWORD TokenSlot = TlsAlloc();

}  // namespace

struct Thread::Implementation {
    HANDLE Handle = nullptr;
    HMODULE Library = nullptr;  // the thread's own reference to the library with the code
    ThreadProcedure Procedure = nullptr;
    void* Argument = nullptr;

    // Realigns the stack through the compiler's -mstackrealign: the platform calls with 4-byte alignment.
    static DWORD WINAPI Run(void* self) {
        const auto* thread = static_cast<const Implementation*>(self);
        const HMODULE library = thread->Library;
        thread->Procedure(thread->Argument);
        FreeLibraryAndExitThread(library, 0);
    }
};

Thread::Thread() : Implementation_(std::make_unique<Implementation>()) {}

Thread::~Thread() {
    if (Implementation_->Handle != nullptr) CloseHandle(Implementation_->Handle);
}

bool Thread::Create(ThreadProcedure procedure, void* argument) {
    if (Running()) return false;
    Implementation& thread = *Implementation_;
    const auto* code = reinterpret_cast<const wchar_t*>(reinterpret_cast<uintptr_t>(&Implementation::Run));
    if (!GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS, code, &thread.Library)) return false;
    thread.Procedure = procedure;
    thread.Argument = argument;
    DWORD id = 0;
    thread.Handle = CreateThread(nullptr, ThreadStackBytes, &Implementation::Run, &thread, CREATE_SUSPENDED, &id);
    if (thread.Handle == nullptr) FreeLibrary(thread.Library);
    return thread.Handle != nullptr;
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

uintptr_t ThreadToken() {
    return reinterpret_cast<uintptr_t>(TlsGetValue(TokenSlot));
}

bool SetThreadToken(uintptr_t token) {
    return TlsSetValue(TokenSlot, reinterpret_cast<void*>(token));
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
