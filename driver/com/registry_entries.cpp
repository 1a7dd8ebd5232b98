#include "driver/com/registry_entries.h"

#include "driver/com/identifiers.h"

namespace corvane {

namespace {

std::wstring ClassIdentifier() {
    return Braced(__uuidof(::Corvane));
}
std::wstring ClassKey() {
    return L"CLSID\\" + ClassIdentifier();
}
// The surrogate has the identifier of the class, because its process serves no other class.
std::wstring SurrogateKey() {
    return L"AppID\\" + ClassIdentifier();
}

}  // namespace

// The marshaler asks for locale 0, which is no particular language: without that entry it finds no proxy for an
// interface.
std::vector<TypeLibraryRow> TypeLibraries() {
    return {
        {TessmarkLibrary,
         TessmarkVersion,
         ComponentDescription,
         TessmarkResource,
         {TessmarkLocale, L"0"},
         {{__uuidof(_Corvane), L"_Corvane"}, {EarlierCorvane, L"_Corvane"}},
         false},
        {ADCInterface3Library,
         ADCInterface3Version,
         L"ADCInterface3",
         ADCInterface3Resource,
         {L"0"},
         {{__uuidof(IADC3), L"IADC3"}},
         true},
        {CorvaneStatusLibrary,
         CorvaneStatusVersion,
         L"CorvaneStatus",
         CorvaneStatusResource,
         {L"0"},
         {{__uuidof(ICorvaneStatus), L"ICorvaneStatus"}},
         false},
    };
}

std::wstring Braced(const GUID& identifier) {
    wchar_t text[39];
    StringFromGUID2(identifier, text, 39);
    return text;
}

std::wstring LibraryKey(const std::wstring& bracedIdentifier) {
    return L"TypeLib\\" + bracedIdentifier;
}

std::wstring VersionKey(const TypeLibraryRow& library) {
    return LibraryKey(Braced(library.Identifier)) + L'\\' + library.Version;
}

std::wstring InterfaceKey(const DescribedInterface& described) {
    return L"Interface\\" + Braced(described.Identifier);
}

std::vector<std::wstring> ClassKeys() {
    return {ProgrammaticIdentifier, ClassKey(), SurrogateKey()};
}

std::vector<RegistryEntry> ClassEntries(const std::wstring& path) {
    return {
        {ProgrammaticIdentifier, nullptr, ComponentDescription},
        {std::wstring(ProgrammaticIdentifier) + L"\\CLSID", nullptr, ClassIdentifier()},
        {ClassKey(), nullptr, ComponentDescription},
        {ClassKey(), L"AppID", ClassIdentifier()},
        {ClassKey() + L"\\InprocServer32", nullptr, path},
        {ClassKey() + L"\\InprocServer32", L"ThreadingModel", L"Apartment"},
        {ClassKey() + L"\\ProgID", nullptr, ProgrammaticIdentifier},
        {ClassKey() + L"\\Programmable", nullptr, L""},
        {ClassKey() + L"\\TypeLib", nullptr, Braced(TessmarkLibrary)},
        {ClassKey() + L"\\Version", nullptr, TessmarkVersion},
        {SurrogateKey(), nullptr, ComponentDescription},
        {SurrogateKey(), L"DllSurrogate", L""},  // empty: the platform's own surrogate
    };
}

std::vector<RegistryEntry> FileEntries(const TypeLibraryRow& library, const std::wstring& path) {
    // A path without a number means the file's first library.
    const std::wstring file = library.Resource == 1 ? path : path + L'\\' + std::to_wstring(library.Resource);
    std::vector<RegistryEntry> entries;
    for (const wchar_t* locale : library.Locales) {
        entries.push_back({VersionKey(library) + L'\\' + locale + L"\\win32", nullptr, file});
    }
    return entries;
}

std::vector<RegistryEntry> VersionEntries(const TypeLibraryRow& library, const std::wstring& path) {
    const std::wstring key = VersionKey(library);
    return {{key, nullptr, library.Description},
            {key + L"\\FLAGS", nullptr, L"0"},
            {key + L"\\HELPDIR", nullptr, path.substr(0, path.rfind(L'\\'))}};
}

std::vector<RegistryEntry> InterfaceEntries(const TypeLibraryRow& library) {
    std::vector<RegistryEntry> entries;
    for (const DescribedInterface& described : library.Interfaces) {
        const std::wstring key = InterfaceKey(described);
        entries.push_back({key, nullptr, described.Name});
        entries.push_back({key + L"\\ProxyStubClsid32", nullptr, AutomationMarshaler});
        entries.push_back({key + L"\\TypeLib", nullptr, Braced(library.Identifier)});
        entries.push_back({key + L"\\TypeLib", L"Version", library.Version});
    }
    return entries;
}

}  // namespace corvane
