// Writes registry values one after the other. Unless they are accepted in the end, the destructor undoes all of it:
// earlier values are restored, and new keys are removed.
#pragma once

#include <windows.h>

#include <optional>
#include <string>
#include <vector>

#include "driver/com/registry_values.h"

namespace corvane {

class RegistryJournal {
public:
    explicit RegistryJournal(HKEY root) : Root_(root) {}
    ~RegistryJournal();
    RegistryJournal(const RegistryJournal&) = delete;
    RegistryJournal& operator=(const RegistryJournal&) = delete;

    // Stores a text and makes the missing keys of its path. `name` null: the key's default value. Throws Failure.
    void Write(const std::wstring& key, const wchar_t* name, const std::wstring& text);

    void Accept() { Steps_.clear(); }

private:
    // Either a key that was made, or a value that was written; `Earlier` is the value before, or empty when there was
    // none.
    struct Step {
        std::wstring Key;
        bool MadeKey;
        const wchar_t* Name;
        std::optional<StoredValue> Earlier;
    };

    void MakeKeys(const std::wstring& key);
    std::optional<StoredValue> Read(const std::wstring& key, const wchar_t* name) const;
    void Undo(const Step& step) const;

    HKEY Root_;
    std::vector<Step> Steps_;
};

}  // namespace corvane
