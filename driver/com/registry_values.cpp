#include "driver/com/registry_values.h"

#include <cstring>

namespace corvane {

LSTATUS ReadValue(HKEY root, const std::wstring& key, const wchar_t* name, StoredValue& value) {
    HKEY opened = nullptr;
    LSTATUS status = RegOpenKeyExW(root, key.c_str(), 0, KEY_QUERY_VALUE, &opened);
    if (status != ERROR_SUCCESS) return status;
    DWORD size = 0;
    status = RegQueryValueExW(opened, name, nullptr, nullptr, nullptr, &size);
    value.Bytes.resize(size);
    if (status == ERROR_SUCCESS) {
        status = RegQueryValueExW(opened, name, nullptr, &value.Type, value.Bytes.data(), &size);
        value.Bytes.resize(status == ERROR_SUCCESS ? size : 0);
    }
    RegCloseKey(opened);
    return status;
}

LSTATUS StoreValue(HKEY root, const std::wstring& key, const wchar_t* name, DWORD type, const void* bytes,
                   size_t size) {
    HKEY opened = nullptr;
    LSTATUS status = RegOpenKeyExW(root, key.c_str(), 0, KEY_SET_VALUE, &opened);
    if (status != ERROR_SUCCESS) return status;
    status = RegSetValueExW(opened, name, 0, type, static_cast<const BYTE*>(bytes), static_cast<DWORD>(size));
    RegCloseKey(opened);
    return status;
}

std::wstring ReadText(HKEY root, const std::wstring& key, const wchar_t* name) {
    StoredValue value = {};
    if (ReadValue(root, key, name, value) != ERROR_SUCCESS) return {};
    std::wstring text(value.Bytes.size() / sizeof(wchar_t), L'\0');
    std::memcpy(text.data(), value.Bytes.data(), text.size() * sizeof(wchar_t));
    return text.substr(0, text.find(L'\0'));
}

std::vector<std::wstring> SubKeys(HKEY root, const std::wstring& key) {
    std::vector<std::wstring> names;
    HKEY opened = nullptr;
    if (RegOpenKeyExW(root, key.c_str(), 0, KEY_ENUMERATE_SUB_KEYS, &opened) != ERROR_SUCCESS) return names;
    wchar_t name[256];  // a key's name has at most 255 characters
    while (RegEnumKeyW(opened, static_cast<DWORD>(names.size()), name, 256) == ERROR_SUCCESS) names.push_back(name);
    RegCloseKey(opened);
    return names;
}

bool DeleteIfEmpty(HKEY root, const std::wstring& key) {
    DWORD keys = 0, values = 0;
    HKEY opened = nullptr;
    if (RegOpenKeyExW(root, key.c_str(), 0, KEY_READ, &opened) != ERROR_SUCCESS) return false;
    const LSTATUS status = RegQueryInfoKeyW(opened, nullptr, nullptr, nullptr, &keys, nullptr, nullptr, &values,
                                            nullptr, nullptr, nullptr, nullptr);
    RegCloseKey(opened);
    return status == ERROR_SUCCESS && keys == 0 && values == 0 && RegDeleteKeyW(root, key.c_str()) == ERROR_SUCCESS;
}

}  // namespace corvane
