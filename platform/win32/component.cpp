#include "platform/component.h"

#include "platform/win32/component_module.h"
#include "platform/win32/wide_text.h"

namespace corvane::platform {

namespace {

constexpr DWORD NotOrdinary = FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM;

// A search for files also finds them by their short names, in which longer extensions are cut.
bool Encloses(const std::wstring& name, const std::wstring& prefix, const std::wstring& suffix) {
    return name.size() >= prefix.size() + suffix.size() &&
           lstrcmpiW(name.substr(0, prefix.size()).c_str(), prefix.c_str()) == 0 &&
           lstrcmpiW(name.substr(name.size() - suffix.size()).c_str(), suffix.c_str()) == 0;
}

}  // namespace

HMODULE ComponentModule() {
    HMODULE module = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       reinterpret_cast<const wchar_t*>(&ComponentModule), &module);
    return module;
}

std::string ComponentFolder() {
    std::wstring path(MAX_PATH, L'\0');
    for (;;) {
        const DWORD length = GetModuleFileNameW(ComponentModule(), path.data(), static_cast<DWORD>(path.size()));
        if (length < path.size()) {
            path.resize(length);
            break;
        }
        path.resize(path.size() * 2);
        if (path.size() > 65536) return {};  // beyond any path that the platform accepts
    }
    const size_t separator = path.rfind(L'\\');
    return separator == std::wstring::npos ? std::string() : Utf8(path.substr(0, separator));
}

std::string FirstFile(const std::string& folder, const std::string& prefix, const std::string& suffix) {
    WIN32_FIND_DATAW found = {};
    const HANDLE search = FindFirstFileW(Wide(folder + "\\" + prefix + "*" + suffix).c_str(), &found);
    if (search == INVALID_HANDLE_VALUE) return {};
    std::string name;
    do {
        const bool ordinary = (found.dwFileAttributes & NotOrdinary) == 0;
        if (ordinary && Encloses(found.cFileName, Wide(prefix), Wide(suffix))) name = Utf8(found.cFileName);
    } while (name.empty() && FindNextFileW(search, &found));
    FindClose(search);
    return name;
}

std::string StringResource(int number) {
    wchar_t text[1024] = {};  // the longest text of the table is far below
    const int length = LoadStringW(ComponentModule(), static_cast<UINT>(number), text, 1024);
    return length > 0 ? Utf8(std::wstring(text, static_cast<size_t>(length))) : std::string();
}

}  // namespace corvane::platform
