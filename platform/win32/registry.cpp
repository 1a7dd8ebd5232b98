#include "platform/registry.h"

#include <windows.h>

namespace corvane::platform {

namespace {

static_assert(sizeof(HKEY) == sizeof(RegistryKey));

HKEY Handle(RegistryKey key) {
    return reinterpret_cast<HKEY>(key);
}

template <class Call>
int32_t Opening(Call call, RegistryKey& key) {
    HKEY handle = nullptr;
    const LONG result = call(handle);
    key = reinterpret_cast<RegistryKey>(handle);
    return result;
}

// The platform's DWORD has 32 bits, too, but is another type than uint32_t.
template <class Call>
int32_t WithLengths(uint32_t& first, uint32_t* type, uint32_t& second, Call call) {
    DWORD firstLength = first, valueType = 0, secondLength = second;
    const LONG result = call(firstLength, valueType, secondLength);
    first = firstLength;
    if (type != nullptr) *type = valueType;
    second = secondLength;
    return result;
}

}  // namespace

int32_t OpenKey(RegistryKey parent, const std::string& path, uint32_t rights, RegistryKey& key) {
    return Opening([&](HKEY& opened) { return RegOpenKeyExA(Handle(parent), path.c_str(), 0, rights, &opened); }, key);
}

int32_t CreateKey(RegistryKey parent, const std::string& path, uint32_t rights, RegistryKey& key) {
    return Opening(
        [&](HKEY& opened) {
            return RegCreateKeyExA(Handle(parent), path.c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE, rights, nullptr,
                                   &opened, nullptr);
        },
        key);
}

void CloseKey(RegistryKey key) {
    RegCloseKey(Handle(key));
}

int32_t DeleteKey(RegistryKey parent, const std::string& path) {
    return RegDeleteKeyA(Handle(parent), path.c_str());
}

int32_t QueryKeyInfo(RegistryKey key, KeyInfo& info) {
    DWORD subKeys = 0, longestSubKey = 0, values = 0, longestValueName = 0;
    const LONG result = RegQueryInfoKeyA(Handle(key), nullptr, nullptr, nullptr, &subKeys, &longestSubKey, nullptr,
                                         &values, &longestValueName, nullptr, nullptr, nullptr);
    info = {subKeys, longestSubKey, values, longestValueName};
    return result;
}

int32_t EnumKeyName(RegistryKey key, uint32_t index, char* name, uint32_t& length) {
    DWORD room = length;
    const LONG result = RegEnumKeyExA(Handle(key), index, name, &room, nullptr, nullptr, nullptr, nullptr);
    length = room;
    return result;
}

int32_t QueryKeyValue(RegistryKey key, const std::string& name, uint32_t* type, void* data, uint32_t& size) {
    uint32_t unused = 0;
    return WithLengths(unused, type, size, [&](DWORD&, DWORD& valueType, DWORD& bytes) {
        return RegQueryValueExA(Handle(key), name.c_str(), nullptr, &valueType, static_cast<BYTE*>(data), &bytes);
    });
}

int32_t EnumKeyValue(RegistryKey key, uint32_t index, char* name, uint32_t& length, uint32_t* type, void* data,
                     uint32_t& size) {
    return WithLengths(length, type, size, [&](DWORD& room, DWORD& valueType, DWORD& bytes) {
        return RegEnumValueA(Handle(key), index, name, &room, nullptr, &valueType, static_cast<BYTE*>(data), &bytes);
    });
}

int32_t SetKeyValue(RegistryKey key, const std::string& name, uint32_t type, const void* data, uint32_t size) {
    return RegSetValueExA(Handle(key), name.c_str(), 0, type, static_cast<const BYTE*>(data), size);
}

int32_t DeleteKeyValue(RegistryKey key, const std::string& name) {
    return RegDeleteValueA(Handle(key), name.c_str());
}

}  // namespace corvane::platform
