#include "platform/win32/dpi.h"

#include <initializer_list>

namespace corvane::platform {

namespace {

template <class Function>
Function FromUser32(const char* name) {
    return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"user32.dll"), name)));
}

void* SetThreadContext(void* context) {
    static const auto set = FromUser32<void*(WINAPI*)(void*)>("SetThreadDpiAwarenessContext");
    return set != nullptr ? set(context) : nullptr;
}

UINT SystemDpi() {
    const HDC screen = GetDC(nullptr);
    const int dpi = GetDeviceCaps(screen, LOGPIXELSY);
    ReleaseDC(nullptr, screen);
    return dpi > 0 ? static_cast<UINT>(dpi) : DesignDpi;
}

}  // namespace

MonitorDpi::MonitorDpi() {
    // Per monitor: version 2, which also scales the window's frame, or version 1. Later platforms define these values.
    for (const intptr_t context : {-4, -3}) {
        Previous_ = SetThreadContext(reinterpret_cast<void*>(context));
        if (Previous_ != nullptr) return;
    }
}

MonitorDpi::~MonitorDpi() {
    if (Previous_ != nullptr) SetThreadContext(Previous_);
}

UINT WindowDpi(HWND window) {
    static const auto get = FromUser32<UINT(WINAPI*)(HWND)>("GetDpiForWindow");
    const UINT dpi = get != nullptr ? get(window) : 0;
    return dpi != 0 ? dpi : SystemDpi();
}

void ScaleDialogOurselves(HWND dialog) {
    constexpr DWORD DisableAll = 1;
    static const auto set = FromUser32<BOOL(WINAPI*)(HWND, DWORD, DWORD)>("SetDialogDpiChangeBehavior");
    if (set != nullptr) set(dialog, DisableAll, DisableAll);
}

}  // namespace corvane::platform
