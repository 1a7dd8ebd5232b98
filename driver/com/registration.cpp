#include "driver/com/registration.h"

#include <windows.h>

#include <shlwapi.h>

#include <string>
#include <vector>

#include "driver/com/guard.h"
#include "driver/com/identifiers.h"
#include "driver/com/library.h"

namespace corvane {

namespace {

// Entries are made for all users; there, and not in a view merged with the user's own, they are removed again.
const HKEY RegistrationRoot = HKEY_LOCAL_MACHINE;
constexpr wchar_t RegistrationBase[] = L"Software\\Classes\\";

// The platform's marshaler for interfaces that a type library describes.
constexpr wchar_t AutomationMarshaler[] = L"{00020424-0000-0000-C000-000000000046}";

struct Entry {
    std::wstring Key;
    const wchar_t* Name;  // null: the key's default value
    std::wstring Value;
};

std::wstring Braced(const GUID& identifier) {
    wchar_t text[39];
    StringFromGUID2(identifier, text, 39);
    return text;
}

std::wstring ClassKey() {
    return L"CLSID\\" + Braced(__uuidof(::Corvane));
}
std::wstring LibraryKey() {
    return L"TypeLib\\" + Braced(TessmarkLibrary);
}
std::wstring InterfaceKey(const GUID& identifier) {
    return L"Interface\\" + Braced(identifier);
}

std::vector<Entry> Entries() {
    const std::wstring path = ModulePath();
    const std::wstring library = Braced(TessmarkLibrary);
    const std::wstring version = LibraryKey() + L"\\" + TessmarkVersion;
    std::vector<Entry> entries = {
        {ProgrammaticIdentifier, nullptr, ComponentDescription},
        {std::wstring(ProgrammaticIdentifier) + L"\\CLSID", nullptr, Braced(__uuidof(::Corvane))},
        {ClassKey(), nullptr, ComponentDescription},
        {ClassKey() + L"\\InprocServer32", nullptr, path},
        {ClassKey() + L"\\InprocServer32", L"ThreadingModel", L"Apartment"},
        {ClassKey() + L"\\ProgID", nullptr, ProgrammaticIdentifier},
        {ClassKey() + L"\\Programmable", nullptr, L""},
        {ClassKey() + L"\\TypeLib", nullptr, library},
        {ClassKey() + L"\\Version", nullptr, TessmarkVersion},
        {version, nullptr, ComponentDescription},
        {version + L"\\FLAGS", nullptr, L"0"},
        {version + L"\\HELPDIR", nullptr, path.substr(0, path.rfind(L'\\'))},
        {version + L"\\" + TessmarkLocale + L"\\win32", nullptr, path},
    };
    for (const GUID& identifier : {__uuidof(_Corvane), EarlierCorvane}) {
        const std::wstring key = InterfaceKey(identifier);
        entries.push_back({key, nullptr, L"_Corvane"});
        entries.push_back({key + L"\\ProxyStubClsid32", nullptr, AutomationMarshaler});
        entries.push_back({key + L"\\TypeLib", nullptr, library});
        entries.push_back({key + L"\\TypeLib", L"Version", TessmarkVersion});
    }
    return entries;
}

LSTATUS Write(const Entry& entry) {
    const DWORD bytes = static_cast<DWORD>((entry.Value.size() + 1) * sizeof(wchar_t));
    return static_cast<LSTATUS>(SHSetValueW(RegistrationRoot, (RegistrationBase + entry.Key).c_str(), entry.Name,
                                            REG_SZ, entry.Value.c_str(), bytes));
}

// Removes every key; the first failure, or ERROR_SUCCESS.
LSTATUS RemoveAll() {
    LSTATUS first = ERROR_SUCCESS;
    for (const std::wstring& key :
         {std::wstring(ProgrammaticIdentifier), ClassKey(), LibraryKey() + L"\\" + TessmarkVersion,
          InterfaceKey(__uuidof(_Corvane)), InterfaceKey(EarlierCorvane)}) {
        const LSTATUS result = static_cast<LSTATUS>(SHDeleteKeyW(RegistrationRoot, (RegistrationBase + key).c_str()));
        if (first == ERROR_SUCCESS && result != ERROR_FILE_NOT_FOUND) first = result;
    }
    // Another version of the type library may be registered beside ours.
    SHDeleteEmptyKeyW(RegistrationRoot, (RegistrationBase + LibraryKey()).c_str());
    return first;
}

}  // namespace

void Register() {
    for (const Entry& entry : Entries()) {
        const LSTATUS result = Write(entry);
        if (result == ERROR_SUCCESS) continue;
        RemoveAll();
        throw Failure{HRESULT_FROM_WIN32(result)};
    }
}

void Unregister() {
    const LSTATUS result = RemoveAll();
    if (result != ERROR_SUCCESS) throw Failure{HRESULT_FROM_WIN32(result)};
}

}  // namespace corvane
