#include "platform/win32/help.h"

#include "platform/win32/wide_text.h"

namespace corvane::platform {

namespace {

// By its full path: a bare name is looked for in the host's current folder, too, and that may be anybody's.
std::wstring SystemFile(const wchar_t* name) {
    std::wstring path(MAX_PATH, L'\0');
    path.resize(GetSystemDirectoryW(path.data(), MAX_PATH));
    return path + L'\\' + name;
}

}  // namespace

bool ShowHelp(HWND window, const std::string& file, int32_t topic) {
    constexpr UINT HelpContext = 0x000F;  // HH_HELP_CONTEXT
    using HtmlHelpFunction = HWND(WINAPI*)(HWND, const wchar_t*, UINT, DWORD_PTR);
    // Checked here, because for a missing file some viewers open an empty window, or none and report no failure.
    const std::wstring path = Wide(file);
    if (GetFileAttributesW(path.c_str()) == INVALID_FILE_ATTRIBUTES) return false;
    // Loaded when it is first needed and never unloaded, because its windows have a thread of their own.
    static const HMODULE viewer = LoadLibraryW(SystemFile(L"hhctrl.ocx").c_str());
    if (viewer == nullptr) return false;
    const auto htmlHelp =
        reinterpret_cast<HtmlHelpFunction>(reinterpret_cast<void*>(GetProcAddress(viewer, "HtmlHelpW")));
    return htmlHelp != nullptr && htmlHelp(window, path.c_str(), HelpContext, static_cast<DWORD>(topic)) != nullptr;
}

}  // namespace corvane::platform
