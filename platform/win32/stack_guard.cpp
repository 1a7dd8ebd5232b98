// What a function with an array on the stack checks before it returns. The compiler's own runtime would ask the
// system's cryptography for the number while the library is being loaded, where nothing may be loaded.
#include <windows.h>

#include <cstdint>

extern "C" {

// Both under the names that the compiler calls them by.
extern uintptr_t StackGuard __asm__("___stack_chk_guard");
[[noreturn]] void StackOverrun() __asm__("___stack_chk_fail");

uintptr_t StackGuard = 0xD3A5'0BE1;

// The stack is not to be trusted any more, so nothing of this process may go on, handlers of exceptions least of all.
[[noreturn]] void StackOverrun() {
    constexpr UINT StackBufferOverrun = 0xC0000409;
    TerminateProcess(GetCurrentProcess(), StackBufferOverrun);
    __builtin_trap();
}

}  // extern "C"

namespace {

// Before every other initialiser: whoever runs while the number changes must not have it on the stack.
[[gnu::constructor(101), gnu::no_stack_protector]] void DrawGuard() {
    LARGE_INTEGER ticks = {};
    QueryPerformanceCounter(&ticks);
    const auto low = static_cast<uintptr_t>(ticks.LowPart) * 2654435761U;  // spreads the fast bits
    StackGuard ^= low ^ GetCurrentProcessId() << 16 ^ reinterpret_cast<uintptr_t>(&ticks) ^ GetTickCount();
}

}  // namespace
