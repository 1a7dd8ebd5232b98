#include "driver/com/registration.h"

#include <windows.h>

#include <shlwapi.h>

#include <string>
#include <vector>

#include "driver/com/guard.h"
#include "driver/com/identifiers.h"
#include "driver/com/library.h"
#include "driver/com/registry_journal.h"

namespace corvane {

namespace {

// HKEY_CLASSES_ROOT is these two merged; apart, an entry is removed where it was made.
const HKEY AllUsers = HKEY_LOCAL_MACHINE;
const HKEY ThisUser = HKEY_CURRENT_USER;
constexpr wchar_t Classes[] = L"Software\\Classes\\";

// The platform's marshaler for interfaces that a type library describes.
constexpr wchar_t AutomationMarshaler[] = L"{00020424-0000-0000-C000-000000000046}";

struct Entry {
    std::wstring Key;
    const wchar_t* Name;  // null: the key's default value
    std::wstring Text;
};

struct LibraryEntry {
    const GUID& Identifier;
    const wchar_t* Version;
    const wchar_t* Locale;
    const wchar_t* Description;
    std::wstring File;
};

std::wstring Braced(const GUID& identifier) {
    wchar_t text[39];
    StringFromGUID2(identifier, text, 39);
    return text;
}

std::wstring ClassKey() {
    return L"CLSID\\" + Braced(__uuidof(::Corvane));
}
// Named after the class, as nothing else is in the surrogate's process.
std::wstring SurrogateKey() {
    return L"AppID\\" + Braced(__uuidof(::Corvane));
}
std::wstring InterfaceKey(const GUID& identifier) {
    return L"Interface\\" + Braced(identifier);
}
std::wstring LibraryKey(const GUID& identifier) {
    return L"TypeLib\\" + Braced(identifier);
}
std::wstring TessmarkKey() {
    return LibraryKey(TessmarkLibrary) + L'\\' + TessmarkVersion;
}
std::wstring HostLibraryKey() {
    return LibraryKey(ADCInterface3Library) + L'\\' + ADCInterface3Version;
}

std::wstring HostLibraryFile() {
    return ModulePath() + L'\\' + std::to_wstring(ADCInterface3Resource);
}

void AddLibrary(std::vector<Entry>& entries, const LibraryEntry& library, std::wstring folder) {
    const std::wstring key = LibraryKey(library.Identifier) + L'\\' + library.Version;
    entries.push_back({key, nullptr, library.Description});
    entries.push_back({key + L"\\FLAGS", nullptr, L"0"});
    entries.push_back({key + L"\\HELPDIR", nullptr, std::move(folder)});
    entries.push_back({key + L'\\' + library.Locale + L"\\win32", nullptr, library.File});
}

void AddInterface(std::vector<Entry>& entries, const GUID& identifier, const wchar_t* name,
                  const LibraryEntry& library) {
    const std::wstring key = InterfaceKey(identifier);
    entries.push_back({key, nullptr, name});
    entries.push_back({key + L"\\ProxyStubClsid32", nullptr, AutomationMarshaler});
    entries.push_back({key + L"\\TypeLib", nullptr, Braced(library.Identifier)});
    entries.push_back({key + L"\\TypeLib", L"Version", library.Version});
}

std::vector<Entry> Entries(bool withHost) {
    const std::wstring path = ModulePath();
    const std::wstring folder = path.substr(0, path.rfind(L'\\'));
    const std::wstring classIdentifier = Braced(__uuidof(::Corvane));
    std::vector<Entry> entries = {
        {ProgrammaticIdentifier, nullptr, ComponentDescription},
        {std::wstring(ProgrammaticIdentifier) + L"\\CLSID", nullptr, classIdentifier},
        {ClassKey(), nullptr, ComponentDescription},
        {ClassKey(), L"AppID", classIdentifier},
        {ClassKey() + L"\\InprocServer32", nullptr, path},
        {ClassKey() + L"\\InprocServer32", L"ThreadingModel", L"Apartment"},
        {ClassKey() + L"\\ProgID", nullptr, ProgrammaticIdentifier},
        {ClassKey() + L"\\Programmable", nullptr, L""},
        {ClassKey() + L"\\TypeLib", nullptr, Braced(TessmarkLibrary)},
        {ClassKey() + L"\\Version", nullptr, TessmarkVersion},
        {SurrogateKey(), nullptr, ComponentDescription},
        {SurrogateKey(), L"DllSurrogate", L""},  // empty: the platform's own
    };
    const LibraryEntry own = {TessmarkLibrary, TessmarkVersion, TessmarkLocale, ComponentDescription, path};
    AddLibrary(entries, own, folder);
    // The marshaler asks for no language; without this it would have no proxy for _Corvane.
    entries.push_back({TessmarkKey() + L"\\0\\win32", nullptr, path});
    AddInterface(entries, __uuidof(_Corvane), L"_Corvane", own);
    AddInterface(entries, EarlierCorvane, L"_Corvane", own);
    if (withHost) {
        const LibraryEntry host = {ADCInterface3Library, ADCInterface3Version, L"0", L"ADCInterface3",
                                   HostLibraryFile()};
        AddLibrary(entries, host, folder);
        AddInterface(entries, __uuidof(IADC3), L"IADC3", host);
    }
    return entries;
}

bool KeyExists(HKEY root, const std::wstring& key) {
    HKEY opened = nullptr;
    if (RegOpenKeyExW(root, (Classes + key).c_str(), 0, KEY_READ, &opened) != ERROR_SUCCESS) return false;
    RegCloseKey(opened);
    return true;
}

// Whether the description of IADC3 registered there is the one in this component's file, in whatever folder that was
// registered. Registering the host's own puts its path there, and with it the interface stops being ours.
bool HostLibraryIsOurs(HKEY root) {
    wchar_t registered[1024] = {};
    DWORD bytes = sizeof registered - sizeof(wchar_t);
    const std::wstring key = Classes + HostLibraryKey() + L"\\0\\win32";
    if (SHGetValueW(root, key.c_str(), nullptr, nullptr, registered, &bytes) != ERROR_SUCCESS) return false;
    const std::wstring file = HostLibraryFile();
    const std::wstring ending = file.substr(file.rfind(L'\\', file.rfind(L'\\') - 1));
    const std::wstring text = registered;
    return text.size() >= ending.size() && StrCmpIW(text.c_str() + text.size() - ending.size(), ending.c_str()) == 0;
}

// Library and interface are taken as one: half a description is still the host's, and ours beside it would mix two.
bool HostDescribesItself(HKEY root) {
    return (KeyExists(root, HostLibraryKey()) || KeyExists(root, InterfaceKey(__uuidof(IADC3)))) &&
           !HostLibraryIsOurs(root);
}

void RemoveIfEmpty(HKEY root, const std::wstring& key) {
    DWORD keys = 0, values = 0;
    const std::wstring path = Classes + key;
    HKEY opened = nullptr;
    if (RegOpenKeyExW(root, path.c_str(), 0, KEY_READ, &opened) != ERROR_SUCCESS) return;
    const LSTATUS status = RegQueryInfoKeyW(opened, nullptr, nullptr, nullptr, &keys, nullptr, nullptr, &values,
                                            nullptr, nullptr, nullptr, nullptr);
    RegCloseKey(opened);
    if (status == ERROR_SUCCESS && keys == 0 && values == 0) RegDeleteKeyW(root, path.c_str());
}

// Removes every key; the first failure, or ERROR_SUCCESS.
LSTATUS RemoveFrom(HKEY root) {
    std::vector<std::wstring> keys = {
        ProgrammaticIdentifier,      ClassKey(), SurrogateKey(), TessmarkKey(), InterfaceKey(__uuidof(_Corvane)),
        InterfaceKey(EarlierCorvane)};
    if (HostLibraryIsOurs(root)) {
        keys.push_back(InterfaceKey(__uuidof(IADC3)));
        keys.push_back(HostLibraryKey());
    }
    LSTATUS first = ERROR_SUCCESS;
    for (const std::wstring& key : keys) {
        const LSTATUS status = static_cast<LSTATUS>(SHDeleteKeyW(root, (Classes + key).c_str()));
        if (first == ERROR_SUCCESS && status != ERROR_FILE_NOT_FOUND) first = status;
    }
    // Other versions of the type libraries may be registered beside ours.
    for (const GUID& library : {TessmarkLibrary, ADCInterface3Library}) RemoveIfEmpty(root, LibraryKey(library));
    // A user without classes of his own has none of these until something is registered for him.
    if (root == ThisUser) {
        for (const wchar_t* shared : {L"CLSID", L"AppID", L"TypeLib", L"Interface"}) RemoveIfEmpty(root, shared);
    }
    return first;
}

void RegisterIn(HKEY root) {
    RegistryJournal journal(root);
    for (const Entry& entry : Entries(!HostDescribesItself(AllUsers) && !HostDescribesItself(ThisUser))) {
        journal.Write(Classes + entry.Key, entry.Name, entry.Text);
    }
    journal.Keep();
}

}  // namespace

void Register() {
    try {
        RegisterIn(AllUsers);
    } catch (const Failure& failure) {
        if (failure.Code != E_ACCESSDENIED) throw;
        RegisterIn(ThisUser);
        return;
    }
    // What an earlier, restricted registration left would hide the new one from this user.
    RemoveFrom(ThisUser);
}

void Unregister() {
    const LSTATUS own = RemoveFrom(ThisUser);
    const LSTATUS all = RemoveFrom(AllUsers);
    const LSTATUS status = own != ERROR_SUCCESS ? own : all;
    if (status != ERROR_SUCCESS) throw Failure{HRESULT_FROM_WIN32(status)};
}

}  // namespace corvane
