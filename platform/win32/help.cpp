#include "platform/win32/help.h"

#include <shellapi.h>

#include "platform/win32/wide_text.h"

namespace corvane::platform {

namespace {

// A function of a system library that is loaded when help is first needed, and never unloaded, because its windows have
// threads of their own. By its full path: a bare name is looked for in the host's current folder, too, and that may be
// anybody's. Null when there is none.
template <class Function>
Function SystemFunction(const wchar_t* library, const char* name) {
    std::wstring path(MAX_PATH, L'\0');
    path.resize(GetSystemDirectoryW(path.data(), MAX_PATH));
    const HMODULE module = LoadLibraryW((path + L'\\' + library).c_str());
    if (module == nullptr) return nullptr;
    return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(module, name)));
}

bool ShowTopic(HWND window, const std::wstring& path, int32_t topic) {
    constexpr UINT HelpContext = 0x000F;  // HH_HELP_CONTEXT
    using HtmlHelpFunction = HWND(WINAPI*)(HWND, const wchar_t*, UINT, DWORD_PTR);
    static const auto htmlHelp = SystemFunction<HtmlHelpFunction>(L"hhctrl.ocx", "HtmlHelpW");
    return htmlHelp != nullptr && htmlHelp(window, path.c_str(), HelpContext, static_cast<DWORD>(topic)) != nullptr;
}

// The browser gets the page's folder as its current one, in place of the host's.
bool ShowPage(HWND window, const std::wstring& path) {
    constexpr INT_PTR LastFailure = 32;
    static const auto open = SystemFunction<decltype(&ShellExecuteW)>(L"shell32.dll", "ShellExecuteW");
    if (open == nullptr) return false;
    const std::wstring folder = path.substr(0, path.rfind(L'\\'));
    return reinterpret_cast<INT_PTR>(open(window, L"open", path.c_str(), nullptr, folder.c_str(), SW_SHOWNORMAL)) >
           LastFailure;
}

}  // namespace

bool ShowHelp(HWND window, const std::string& file, int32_t topic) {
    // Checked here, because for a missing file some viewers open an empty window, or none and report no failure.
    const std::wstring path = Wide(file);
    if (GetFileAttributesW(path.c_str()) == INVALID_FILE_ATTRIBUTES) return false;
    return path.ends_with(L".html") ? ShowPage(window, path) : ShowTopic(window, path, topic);
}

}  // namespace corvane::platform
