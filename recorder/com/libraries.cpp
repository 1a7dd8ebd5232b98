// What the driver consists of in this process, as the system's loader and the files' version records tell; and the
// settings of the system and of the user that a host has to know for that.
#include <windows.h>
// windows.h first: the others build on it.
#include <shlwapi.h>

#include <cwchar>

#include "platform/win32/wide_text.h"
#include "recorder/host_device.h"

namespace corvane::recorder {
namespace {

constexpr UINT ModuleTexts = 1251;  // the code page of the modules' unit texts

std::wstring FileOf(HMODULE module) {
    wchar_t path[MAX_PATH];
    return std::wstring(path, GetModuleFileNameW(module, path, MAX_PATH));
}

// A text of the file's version record; empty: it has none.
std::wstring VersionText(const std::vector<BYTE>& record, const wchar_t* name) {
    struct Translation {
        WORD Language;
        WORD CodePage;
    };
    void* data = nullptr;
    UINT size = 0;
    if (!VerQueryValueW(record.data(), L"\\VarFileInfo\\Translation", &data, &size) || size < sizeof(Translation)) {
        return L"";
    }
    const auto* translation = static_cast<const Translation*>(data);
    wchar_t key[64];
    wnsprintfW(key, 64, L"\\StringFileInfo\\%04x%04x\\%s", translation->Language, translation->CodePage, name);
    if (!VerQueryValueW(record.data(), key, &data, &size)) return L"";
    const auto* text = static_cast<const wchar_t*>(data);
    return std::wstring(text, wcsnlen(text, size));
}

Library Loaded(const wchar_t* name) {
    Library library{platform::Utf8(name), "", "", false};
    HMODULE module = GetModuleHandleW(name);
    if (module == nullptr) return library;  // in another process, say
    const std::wstring file = FileOf(module);
    library.File = platform::Utf8(file);
    DWORD unused = 0;
    std::vector<BYTE> record(GetFileVersionInfoSizeW(file.c_str(), &unused));
    if (record.empty() || !GetFileVersionInfoW(file.c_str(), 0, static_cast<DWORD>(record.size()), record.data())) {
        return library;
    }
    library.Version = platform::Utf8(VersionText(record, L"FileVersion"));
    library.Simulated = VersionText(record, L"ProductName") == L"Corvane simulator";
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
