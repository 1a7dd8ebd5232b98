#include "platform/component.h"

#include "platform/win32/component_module.h"
#include "platform/win32/last_error.h"
#include "platform/win32/wide_text.h"

namespace corvane::platform {

HMODULE ComponentModule() {
    HMODULE module = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       reinterpret_cast<const wchar_t*>(&ComponentModule), &module);
    return module;
}

namespace {

// Null: the program's. Empty on failure, with the system's last error.
std::wstring PathOf(HMODULE module) {
    std::wstring path(MAX_PATH, L'\0');
    for (;;) {
        const DWORD length = GetModuleFileNameW(module, path.data(), static_cast<DWORD>(path.size()));
        if (length < path.size()) return path.substr(0, length);
        path.resize(path.size() * 2);  // a path has at most 32767 characters
    }
}

}  // namespace

std::wstring ComponentPath() {
    std::wstring path = PathOf(ComponentModule());
    if (path.empty()) ThrowLastError();
    return path;
}

std::string ComponentFolder() {
    const std::wstring path = ComponentPath();
    return Utf8(path.substr(0, path.rfind(L'\\')));
}

std::string ComponentFile() {
    return Utf8(PathOf(ComponentModule()));
}

std::string HostProgram() {
    return Utf8(PathOf(nullptr));
}

}  // namespace corvane::platform
