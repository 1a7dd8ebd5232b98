#include "platform/component_version.h"

#include <algorithm>
#include <cstring>

#include "platform/win32/component_module.h"

namespace corvane::platform {

// Straight from the loaded resource: asking by file name would open the file a second time and need another library.
std::string ComponentVersion() {
    const HMODULE module = ComponentModule();
    const HRSRC resource = FindResourceW(module, MAKEINTRESOURCEW(VS_VERSION_INFO), RT_VERSION);
    const HGLOBAL loaded = resource ? LoadResource(module, resource) : nullptr;
    if (!loaded) return {};
    const auto* bytes = static_cast<const char*>(LockResource(loaded));
    const char* end = bytes + SizeofResource(module, resource);
    constexpr DWORD Signature = VS_FFI_SIGNATURE;
    const auto* first = reinterpret_cast<const char*>(&Signature);
    const char* found = std::search(bytes, end, first, first + sizeof Signature);
    VS_FIXEDFILEINFO record;
    if (static_cast<size_t>(end - found) < sizeof record) return {};
    std::memcpy(&record, found, sizeof record);
    return std::to_string(HIWORD(record.dwFileVersionMS)) + "." + std::to_string(LOWORD(record.dwFileVersionMS)) + "." +
           std::to_string(LOWORD(record.dwFileVersionLS));
}

}  // namespace corvane::platform
