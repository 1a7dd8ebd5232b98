// Frees what would be left when a thread ends or the library is unloaded.
//
// Slots: the driver allocates a thread-local slot, and so does the compiler's thread runtime, which is linked into this
// library. The runtime also opens two handles for each thread that uses it. It closes them when the thread ends, but it
// never frees its slot: after about a thousand loads in one process there would be no slot left.
//
// Memory: the language's library keeps 18.5 KiB in reserve for exceptions that are thrown when no memory is left, and
// would leave them to the process.
//
// Devices: while objects exist, DllCanUnloadNow says no, but the last CoUninitialize of a process unloads the library
// all the same. While the loader's lock is held no thread can end, so none can be waited for here. None needs to be:
// each recording thread keeps this library loaded until its own end, so that no recording is running now. A recording
// that a dead host thread had not stopped was asked to stop when that thread ended.
#include <windows.h>

#include "driver/lifecycle.h"

namespace __gnu_cxx {

void __freeres() noexcept;  // NOLINT: the library's name; frees what it keeps in reserve

}  // namespace __gnu_cxx

namespace {

DWORD Slots[4];  // two are in use
int SlotCount = 0;

DWORD WINAPI RememberSlot() {
    const auto allocate = reinterpret_cast<DWORD(WINAPI*)()>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"kernel32.dll"), "TlsAlloc")));
    const DWORD slot = allocate();
    if (slot != TLS_OUT_OF_INDEXES && SlotCount < 4) Slots[SlotCount++] = slot;
    return slot;
}

}  // namespace

extern "C" {

// Replaces the pointer through which imported TlsAlloc is called.
extern DWORD(WINAPI* const ImportedTlsAlloc)() __asm__("__imp__TlsAlloc@0");
DWORD(WINAPI* const ImportedTlsAlloc)() = RememberSlot;

// The runtime's own callback for threads that start and end.
extern const PIMAGE_TLS_CALLBACK RuntimeThreadCallback __asm__("___xl_f");

BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, void* processEnds) {
    if (reason == DLL_THREAD_DETACH) corvane::LeaveThread();
    // At the end of the process the other threads have been ended already, each at any point of its work, and the
    // system frees everything.
    if (reason == DLL_PROCESS_DETACH && processEnds == nullptr) {
        corvane::CloseWhatIsLeft();
        // Tells the runtime that this thread ends. No destructor that runs after this uses the runtime or throws.
        RuntimeThreadCallback(instance, DLL_THREAD_DETACH, nullptr);
        __gnu_cxx::__freeres();
        for (int i = 0; i < SlotCount; i++) TlsFree(Slots[i]);
    }
    return TRUE;
}

}  // extern "C"
