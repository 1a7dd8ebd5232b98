#include "recorder/setup/file_version.h"

#include <windows.h>
// windows.h first: the others build on it.
#include <shlwapi.h>

#include <cwchar>
#include <vector>

#include "platform/win32/wide_text.h"

namespace corvane::recorder {
namespace {

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

}  // namespace

FileVersion VersionOf(const std::wstring& file) {
    DWORD unused = 0;
    std::vector<BYTE> record(GetFileVersionInfoSizeW(file.c_str(), &unused));
    if (record.empty() || !GetFileVersionInfoW(file.c_str(), 0, static_cast<DWORD>(record.size()), record.data())) {
        return {};
    }
    return {platform::Utf8(VersionText(record, L"FileVersion")),
            VersionText(record, L"ProductName") == L"Corvane simulator"};
}

}  // namespace corvane::recorder
