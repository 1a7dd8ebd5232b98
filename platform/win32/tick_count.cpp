// Lets our files load on Windows XP: the compiler's thread runtime, linked into them, measures its waits with
// GetTickCount64, which only later Windows have. In a file that this is linked into, it replaces that import.
#include <windows.h>

namespace {

// Milliseconds since some moment. Unlike GetTickCount it doesn't start anew after 49 days.
ULONGLONG WINAPI Milliseconds() {
    LARGE_INTEGER ticks = {}, perSecond = {};
    QueryPerformanceCounter(&ticks);
    QueryPerformanceFrequency(&perSecond);
    const LONGLONG seconds = ticks.QuadPart / perSecond.QuadPart, rest = ticks.QuadPart % perSecond.QuadPart;
    return static_cast<ULONGLONG>(seconds * 1000 + rest * 1000 / perSecond.QuadPart);
}

}  // namespace

extern "C" {

// What the runtime calls GetTickCount64 through.
extern ULONGLONG(WINAPI* const ImportedGetTickCount64)() __asm__("__imp__GetTickCount64@0");
ULONGLONG(WINAPI* const ImportedGetTickCount64)() = Milliseconds;

}  // extern "C"
