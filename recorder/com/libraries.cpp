// What the driver consists of in this process, as the system's loader and the files' version records tell; and the
// settings of the system and of the user that a host has to know for that.
#include <windows.h>
// windows.h first: the others build on it.
#include <shlwapi.h>

#include "platform/win32/wide_text.h"
#include "recorder/host_device.h"
#include "recorder/setup/file_version.h"

namespace corvane::recorder {
namespace {

constexpr UINT ModuleTexts = 1251;  // the code page of the modules' unit texts

std::wstring FileOf(HMODULE module) {
    wchar_t path[MAX_PATH];
    return std::wstring(path, GetModuleFileNameW(module, path, MAX_PATH));
}

Library Loaded(const wchar_t* name) {
    Library library{platform::Utf8(name), "", "", false};
    HMODULE module = GetModuleHandleW(name);
    if (module == nullptr) return library;  // in another process, say
    const std::wstring file = FileOf(module);
    library.File = platform::Utf8(file);
    FileVersion version = VersionOf(file);
    library.Version = std::move(version.Version);
    library.Simulated = version.Simulated;
    return library;
}

}  // namespace

std::vector<Library> HostDevice::Libraries() const {
    return {Loaded(L"Corvane.adc"), Loaded(L"ltrapi.dll"), Loaded(L"ltr27api.dll")};
}

// The driver has no member for it; it keeps the mode here.
int HostDevice::StartMarkMode() const {
    DWORD mode = 0;
    DWORD size = sizeof(mode);
    SHGetValueW(HKEY_CURRENT_USER, L"Software\\Vrex\\ADC\\L-Card\\LTR27", L"MarkSTARTMode", nullptr, &mode, &size);
    return static_cast<int>(mode);
}

bool HostDevice::ReadsModuleTexts() {
    return GetACP() == ModuleTexts;
}

}  // namespace corvane::recorder
