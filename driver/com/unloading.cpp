// Leaves nothing behind when a thread ends or the library is unloaded.
//
// Slots: the driver takes a thread-local slot, and so does the compiler's thread runtime, linked into this library,
// with two handles for each thread that comes by. It gives a thread's handles back when that thread ends, and the slot
// never: after some thousand loads in one process there would be no slot left.
//
// Devices: while objects live, DllCanUnloadNow says no, but the last CoUninitialize of a process unloads all the same.
// With the loader's lock held no thread can end, so none can be waited for here. None needs to: each recording thread
// holds this library until its own end, so that the library only goes when no recording runs. A recording that a dead
// host thread left behind has been asked to stop when that thread ended.
#include <windows.h>

#include "driver/lifecycle.h"

namespace {

DWORD Slots[4];  // two are taken
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

// Takes the place of the import that TlsAlloc is called through.
extern DWORD(WINAPI* const ImportedTlsAlloc)() __asm__("__imp__TlsAlloc@0");
DWORD(WINAPI* const ImportedTlsAlloc)() = RememberSlot;

// The runtime's own callback for threads that come and go.
extern const PIMAGE_TLS_CALLBACK RuntimeThreadCallback __asm__("___xl_f");

BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, void* processEnds) {
    if (reason == DLL_THREAD_DETACH) corvane::LeaveThread();
    // At the end of the process the other threads are gone already, wherever they were, and everything goes with it.
    if (reason == DLL_PROCESS_DETACH && processEnds == nullptr) {
        corvane::CloseWhatIsLeft();
        // For the runtime this thread ends here. No destructor that still runs uses it.
        RuntimeThreadCallback(instance, DLL_THREAD_DETACH, nullptr);
        for (int i = 0; i < SlotCount; i++) TlsFree(Slots[i]);
    }
    return TRUE;
}

}  // extern "C"
