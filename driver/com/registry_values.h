// Values and keys of the platform's registry, as registering and unregistering need them. Names of values may be null:
// the key's default value.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

namespace corvane {

struct StoredValue {
    DWORD Type;
    std::vector<BYTE> Bytes;
};

// ERROR_FILE_NOT_FOUND when there is no such key or value.
LSTATUS ReadValue(HKEY root, const std::wstring& key, const wchar_t* name, StoredValue& value);

LSTATUS StoreValue(HKEY root, const std::wstring& key, const wchar_t* name, DWORD type, const void* bytes, size_t size);

// The value as a text, whatever its type; empty when it can't be read.
std::wstring ReadText(HKEY root, const std::wstring& key, const wchar_t* name);

// Names of the keys right below.
std::vector<std::wstring> SubKeys(HKEY root, const std::wstring& key);

// True when the key was empty and is deleted now.
bool DeleteIfEmpty(HKEY root, const std::wstring& key);

}  // namespace corvane
