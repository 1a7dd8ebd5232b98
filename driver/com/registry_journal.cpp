#include "driver/com/registry_journal.h"

#include <shlwapi.h>

#include "driver/com/failure.h"

namespace corvane {

namespace {

void CheckStatus(LSTATUS status) {
    if (status != ERROR_SUCCESS) throw Failure{HRESULT_FROM_WIN32(status)};
}

}  // namespace

RegistryJournal::~RegistryJournal() {
    for (auto step = Steps_.rbegin(); step != Steps_.rend(); ++step) Undo(*step);
}

void RegistryJournal::Write(const std::wstring& key, const wchar_t* name, const std::wstring& text) {
    MakeKeys(key);
    Steps_.push_back({key, false, name, Read(key, name)});
    const LSTATUS status = StoreValue(Root_, key, name, REG_SZ, text.c_str(), (text.size() + 1) * sizeof(wchar_t));
    if (status != ERROR_SUCCESS) Steps_.pop_back();
    CheckStatus(status);
}

// Makes the keys level by level, so that each new one is noted. Keys that exist are only opened for reading, which
// needs no administrator's rights.
void RegistryJournal::MakeKeys(const std::wstring& key) {
    for (size_t end = 0; end != std::wstring::npos;) {
        end = key.find(L'\\', end + 1);
        const std::wstring part = key.substr(0, end);
        HKEY opened = nullptr;
        LSTATUS status = RegOpenKeyExW(Root_, part.c_str(), 0, KEY_READ, &opened);
        if (status == ERROR_FILE_NOT_FOUND) {
            Steps_.push_back({part, true, nullptr, std::nullopt});
            status = RegCreateKeyExW(Root_, part.c_str(), 0, nullptr, 0, KEY_READ, nullptr, &opened, nullptr);
            if (status != ERROR_SUCCESS) Steps_.pop_back();
        }
        CheckStatus(status);
        RegCloseKey(opened);
    }
}

std::optional<StoredValue> RegistryJournal::Read(const std::wstring& key, const wchar_t* name) const {
    StoredValue value = {};
    const LSTATUS status = ReadValue(Root_, key, name, value);
    if (status == ERROR_FILE_NOT_FOUND) return std::nullopt;
    CheckStatus(status);
    return value;
}

// Its own failures are ignored: what is reported is the failure that made undoing necessary.
void RegistryJournal::Undo(const Step& step) const {
    if (step.MadeKey) {
        RegDeleteKeyW(Root_, step.Key.c_str());
    } else if (step.Earlier) {
        StoreValue(Root_, step.Key, step.Name, step.Earlier->Type, step.Earlier->Bytes.data(),
                   step.Earlier->Bytes.size());
    } else {
        SHDeleteValueW(Root_, step.Key.c_str(), step.Name);
    }
}

}  // namespace corvane
