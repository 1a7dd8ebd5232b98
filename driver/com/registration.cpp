#include "driver/com/registration.h"

#include <windows.h>

#include <shlwapi.h>

#include "driver/com/failure.h"
#include "driver/com/registry_entries.h"
#include "driver/com/registry_journal.h"
#include "driver/com/registry_owners.h"
#include "driver/com/registry_values.h"

namespace corvane {

namespace {

const HKEY AllUsers = HKEY_LOCAL_MACHINE;
const HKEY ThisUser = HKEY_CURRENT_USER;

void RegisterIn(HKEY root, const std::wstring& path) {
    RegistryJournal journal(root);
    const auto write = [&](const std::vector<RegistryEntry>& entries) {
        for (const RegistryEntry& entry : entries) journal.Write(Classes + entry.Key, entry.Name, entry.Text);
    };
    write(ClassEntries(path));
    for (const TypeLibraryRow& library : TypeLibraries()) {
        // Where somebody else has registered the description, nothing is added to it. Only entries that name our file
        // already are written again, because the file may have moved.
        const bool leave =
            library.OfTheHost && (IsOfOthers(AllUsers, library, path) || IsOfOthers(ThisUser, library, path));
        for (const RegistryEntry& file : FileEntries(library, path)) {
            if (!leave || IsOurs(root, file, path)) write({file});
        }
        if (leave) continue;
        write(VersionEntries(library, path));
        write(InterfaceEntries(library));
    }
    journal.Accept();
}

// Removes what it can. The first failure, or ERROR_SUCCESS.
LSTATUS RemoveFrom(HKEY root, const std::wstring& path) {
    LSTATUS first = ERROR_SUCCESS;
    const auto note = [&](LSTATUS status) {
        if (first == ERROR_SUCCESS && status != ERROR_FILE_NOT_FOUND) first = status;
    };
    for (const std::wstring& key : ClassKeys()) {
        note(static_cast<LSTATUS>(SHDeleteKeyW(root, (Classes + key).c_str())));
    }
    for (const TypeLibraryRow& library : TypeLibraries()) note(RemoveLibrary(root, library, path));
    // A user has none of these keys until something is registered for this user only, so empty ones are removed.
    if (root == ThisUser) {
        for (const wchar_t* shared : {L"CLSID", L"AppID", L"TypeLib", L"Interface"}) {
            DeleteIfEmpty(root, std::wstring(Classes) + shared);
        }
    }
    return first;
}

}  // namespace

void Register(const std::wstring& path) {
    try {
        RegisterIn(AllUsers, path);
    } catch (const Failure& failure) {
        if (failure.Code != E_ACCESSDENIED) throw;
        RegisterIn(ThisUser, path);
        return;
    }
    // Entries of an earlier registration for this user only would hide the new ones.
    RemoveFrom(ThisUser, path);
}

void RegisterForThisUser(const std::wstring& path) {
    RegisterIn(ThisUser, path);
}

void UnregisterForThisUser(const std::wstring& path) {
    const LSTATUS status = RemoveFrom(ThisUser, path);
    if (status != ERROR_SUCCESS) throw Failure{HRESULT_FROM_WIN32(status)};
}

void Unregister(const std::wstring& path) {
    const LSTATUS own = RemoveFrom(ThisUser, path);
    const LSTATUS all = RemoveFrom(AllUsers, path);
    const LSTATUS status = own != ERROR_SUCCESS ? own : all;
    if (status != ERROR_SUCCESS) throw Failure{HRESULT_FROM_WIN32(status)};
}

}  // namespace corvane
