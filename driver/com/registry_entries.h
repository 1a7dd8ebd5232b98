// What the component records in the registry, all of it below Software\Classes: its class, and the type libraries that
// its file carries.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

namespace corvane {

struct RegistryEntry {
    std::wstring Key;
    const wchar_t* Name;  // null: the key's default value
    std::wstring Text;
};

struct DescribedInterface {
    GUID Identifier;
    const wchar_t* Name;
};

struct TypeLibraryRow {
    GUID Identifier;
    const wchar_t* Version;
    const wchar_t* Description;
    int Resource;                         // its number in the component's file
    std::vector<const wchar_t*> Locales;  // hexadecimal
    std::vector<DescribedInterface> Interfaces;
    bool OfTheHost;  // the host's: registered only where no host has registered it
};

std::vector<TypeLibraryRow> TypeLibraries();

std::wstring Braced(const GUID& identifier);
std::wstring LibraryKey(const std::wstring& bracedIdentifier);
std::wstring VersionKey(const TypeLibraryRow& library);
std::wstring InterfaceKey(const DescribedInterface& described);

// Keys that are the component's, with everything below them.
std::vector<std::wstring> ClassKeys();

// `path` is that of the component's file.
std::vector<RegistryEntry> ClassEntries(const std::wstring& path);
std::vector<RegistryEntry> FileEntries(const TypeLibraryRow& library, const std::wstring& path);
std::vector<RegistryEntry> VersionEntries(const TypeLibraryRow& library, const std::wstring& path);
std::vector<RegistryEntry> InterfaceEntries(const TypeLibraryRow& library);

// The platform's marshaler for interfaces that a type library describes.
constexpr wchar_t AutomationMarshaler[] = L"{00020424-0000-0000-C000-000000000046}";

}  // namespace corvane
