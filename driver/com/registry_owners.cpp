#include "driver/com/registry_owners.h"

#include <shlwapi.h>

#include <algorithm>

#include "driver/com/registry_values.h"

namespace corvane {

namespace {

constexpr int FileDepth = 3;  // keys below a library's: version, locale, platform; the last one's value is the file

bool SameText(const std::wstring& one, const std::wstring& other) {
    return StrCmpIW(one.c_str(), other.c_str()) == 0;
}

// Whether this is the component's file, judged by its name alone: in any folder, with or without the number of a
// library after it.
bool IsOurFile(std::wstring file, const std::wstring& path) {
    const size_t beforeNumber = file.find_last_not_of(L"0123456789");
    if (beforeNumber != std::wstring::npos && file[beforeNumber] == L'\\') file.resize(beforeNumber);
    const std::wstring name = path.substr(path.rfind(L'\\'));
    return file.size() >= name.size() && SameText(file.substr(file.size() - name.size()), name);
}

// Whether somebody else's file is registered `depth` levels below the key.
bool HoldsOtherFile(HKEY root, const std::wstring& key, int depth, const std::wstring& path) {
    if (depth == 0) {
        const std::wstring file = ReadText(root, Classes + key, nullptr);
        return !file.empty() && !IsOurFile(file, path);
    }
    return std::ranges::any_of(SubKeys(root, Classes + key), [&](const std::wstring& name) {
        return HoldsOtherFile(root, key + L'\\' + name, depth - 1, path);
    });
}

// Whether the interface is registered with another proxy, or for a library for which somebody else's file is
// registered.
bool InterfaceIsOfOthers(HKEY root, const DescribedInterface& described, const std::wstring& path) {
    const std::wstring key = Classes + InterfaceKey(described);
    const std::wstring proxy = ReadText(root, key + L"\\ProxyStubClsid32", nullptr);
    if (!proxy.empty() && !SameText(proxy, AutomationMarshaler)) return true;
    const std::wstring leadsTo = ReadText(root, key + L"\\TypeLib", nullptr);
    return !leadsTo.empty() && HoldsOtherFile(root, LibraryKey(leadsTo), FileDepth, path);
}

class Removal {
public:
    explicit Removal(HKEY root) : Root_(root) {}

    void Value(const std::wstring& key, const wchar_t* name) {
        const LSTATUS status = static_cast<LSTATUS>(SHDeleteValueW(Root_, (Classes + key).c_str(), name));
        const bool gone = status == ERROR_SUCCESS || status == ERROR_FILE_NOT_FOUND;
        if (First == ERROR_SUCCESS && !gone) First = status;
        // Then the key, and those above it, as long as they are empty; but never the key that all libraries or
        // interfaces share.
        for (std::wstring empty = key; empty.find(L'\\') != std::wstring::npos; empty.resize(empty.rfind(L'\\'))) {
            if (!DeleteIfEmpty(Root_, Classes + empty)) break;
        }
    }

    LSTATUS First = ERROR_SUCCESS;

private:
    HKEY Root_;
};

}  // namespace

bool IsOfOthers(HKEY root, const TypeLibraryRow& library, const std::wstring& path) {
    return HoldsOtherFile(root, LibraryKey(Braced(library.Identifier)), FileDepth, path) ||
           std::ranges::any_of(library.Interfaces, [&](const DescribedInterface& described) {
               return InterfaceIsOfOthers(root, described, path);
           });
}

bool IsOurs(HKEY root, const RegistryEntry& fileEntry, const std::wstring& path) {
    return IsOurFile(ReadText(root, Classes + fileEntry.Key, nullptr), path);
}

LSTATUS RemoveLibrary(HKEY root, const TypeLibraryRow& library, const std::wstring& path) {
    const bool ofOthers = IsOfOthers(root, library, path);
    Removal removal(root);
    bool wasOurs = false;
    for (const RegistryEntry& file : FileEntries(library, path)) {
        if (!IsOurs(root, file, path)) continue;
        wasOurs = true;
        removal.Value(file.Key, file.Name);
    }
    // When ours was the only file of a version, the other values of that version are ours, too, wherever the file was.
    if (wasOurs && !HoldsOtherFile(root, VersionKey(library), FileDepth - 1, path)) {
        for (const RegistryEntry& entry : VersionEntries(library, path)) removal.Value(entry.Key, entry.Name);
    }
    if (ofOthers) return removal.First;
    for (const RegistryEntry& entry : InterfaceEntries(library)) {
        if (SameText(ReadText(root, Classes + entry.Key, entry.Name), entry.Text)) removal.Value(entry.Key, entry.Name);
    }
    return removal.First;
}

}  // namespace corvane
