// Leaves nothing behind when the library is unloaded. The compiler's thread runtime, linked into this library, takes a
// thread-local slot and, for each thread that comes by, two handles. It gives a thread's handles back when that thread
// ends, and the slot never: after some thousand loads in one process there would be no slot left.
#include <windows.h>

namespace {

DWORD Slots[4];  // taken by the runtime; it takes one
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

// Takes the place of the import that the runtime calls TlsAlloc through.
extern DWORD(WINAPI* const ImportedTlsAlloc)() __asm__("__imp__TlsAlloc@0");
DWORD(WINAPI* const ImportedTlsAlloc)() = RememberSlot;

// The runtime's own callback for threads that come and go.
extern const PIMAGE_TLS_CALLBACK __xl_f;

BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, void* processEnds) {
    if (reason == DLL_PROCESS_DETACH && processEnds == nullptr) {
        // For the runtime this thread ends here. No destructor that still runs uses it.
        __xl_f(instance, DLL_THREAD_DETACH, nullptr);
        for (int i = 0; i < SlotCount; i++) TlsFree(Slots[i]);
    }
    return TRUE;
}

}  // extern "C"
