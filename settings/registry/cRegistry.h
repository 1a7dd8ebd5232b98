// Access to the platform's registry: typed values at a current location (a predefined root and a key path below it) or
// at an explicit one, keys, listings, and export in the registry editor's text form.
//
// Texts are UTF-8 here and cross to the platform in the ANSI code page. Every operation opens the keys that it needs
// and closes them before it returns. A failure shows only in the result and in `LastError`, the platform's code;
// destinations keep what they held. One object is for one thread at a time.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <variant>
#include <vector>

#include "platform/registry.h"

namespace corvane {

using RegistryBytes = std::vector<uint8_t>;

// What QueryValue has read; monostate: nothing yet. Data of other types is not read.
using RegistryValue = std::variant<std::monostate, int32_t, std::string, RegistryBytes>;

// The value families: FAMILY(name, the caller's type), by the type of the data that the registry holds.
//   text REG_SZ          the text in the ANSI code page
//   up to 4 bytes        REG_DWORD: the value's bytes, then zeros. A bool is true for any number but 0
//   8 bytes              REG_BINARY: exactly the value's bytes. Currency counts 1/10000 units
//   bytes                REG_BINARY
// Readers do not look at the stored type. The zero value of a type is what accessors give for a missing value.
#define CORVANE_REGISTRY_FAMILIES(FAMILY) \
    FAMILY(String, std::string)           \
    FAMILY(DWord, int32_t)                \
    FAMILY(Byte, uint8_t)                 \
    FAMILY(Int16, int16_t)                \
    FAMILY(Bool, bool)                    \
    FAMILY(Float, float)                  \
    FAMILY(Double, double)                \
    FAMILY(Currency, int64_t)

class cRegistry {
public:
    uint32_t RootKey() const { return RootKey_; }
    // Makes this the current root, with an empty key path. Does nothing when it is the current root already or can't be
    // opened.
    void SetRootKey(uint32_t root);
    const std::string& KeyPath() const { return KeyPath_; }
    // A missing key is created; when that fails, the location stays as it was.
    void SetKeyPath(const std::string& path);
    // The platform's code for the last call, not counting those that close keys.
    int32_t LastError() const { return LastError_; }
    std::string LastErrorText() const;  // without the period at its end

    // Each family F of type T, here for the current location:
    //   FValue      the value; zero when it can't be read
    //   SetFValue   writes it; a failure shows in LastError only
    //   ReadF       false when it can't be read: `value` becomes the fallback then, unless that is an empty text
    //   WriteF      true when written
    // and ReadFAt, WriteFAt for an explicit one; on failure `value` stays as it was. An empty name is the key's default
    // value. Where fewer than 4 bytes are stored, ReadDWord replaces only as many bytes of `value`.
#define CORVANE_REGISTRY_MEMBERS(F, T)                                                           \
    T F##Value(const std::string& name);                                                         \
    void Set##F##Value(const std::string& name, const T& value);                                 \
    bool Write##F(const std::string& name, const T& value);                                      \
    bool Read##F##At(uint32_t root, const std::string& path, const std::string& name, T& value); \
    bool Write##F##At(uint32_t root, const std::string& path, const std::string& name, const T& value);
#define CORVANE_REGISTRY_READ_WITH_FALLBACK(F, T) bool Read##F(const std::string& name, T& value, const T& fallback);
    CORVANE_REGISTRY_FAMILIES(CORVANE_REGISTRY_MEMBERS)
    CORVANE_REGISTRY_FAMILIES(CORVANE_REGISTRY_READ_WITH_FALLBACK)
    // Bytes have no fallback. BinaryValue gives one byte, 0, when the value can't be read or has no data. An empty
    // array can't be written.
    CORVANE_REGISTRY_MEMBERS(Binary, RegistryBytes)
    bool ReadBinary(const std::string& name, RegistryBytes& value);
#undef CORVANE_REGISTRY_READ_WITH_FALLBACK
#undef CORVANE_REGISTRY_MEMBERS

    bool KeyExists(uint32_t root, const std::string& path);
    // True when the key is there afterwards. defaultText, unless empty, becomes its default value.
    bool CreateKey(uint32_t root, const std::string& path, const std::string& defaultText);
    // False also for a key that has subkeys.
    bool DeleteKey(uint32_t root, const std::string& path);
    bool DeleteValue(uint32_t root, const std::string& path, const std::string& name);

    // Type code of the value with exactly this name, 0 when there is none. Texts come without their last character, the
    // terminator; several texts in one value keep the zeros between them. Numbers of both byte orders are read as
    // little-endian.
    uint32_t QueryValue(uint32_t root, const std::string& path, const std::string& name, RegistryValue& value);
    // Number of subkeys, or values. names[0] becomes the path itself, the names follow.
    int32_t EnumSubKeys(uint32_t root, const std::string& path, std::vector<std::string>& names);
    int32_t EnumValues(uint32_t root, const std::string& path, std::vector<std::string>& names);

    // The key in the registry editor's text form, without the header line; empty when it can't be opened. Of several
    // texts in one value only the first is written, without the spaces around it. Double quotes are written as they
    // are, and the editor can't import such a text.
    std::string ExportKey(uint32_t root, const std::string& path, bool includeSubKeys);
    static std::string RootKeyName(uint32_t root);  // empty for anything but a predefined root

    // The platform's message for a code, without its line end. cutAtPeriod: only up to its first period.
    static std::string SystemErrorText(int32_t code, bool cutAtPeriod);

private:
    // A key that is closed at the end of its scope, unless it is a predefined root.
    struct HeldKey {
        HeldKey() = default;
        ~HeldKey();
        HeldKey(const HeldKey&) = delete;
        HeldKey& operator=(const HeldKey&) = delete;
        platform::RegistryKey Handle = 0;
        bool Opened = false;
    };
    struct ValueLocation {
        uint32_t Root;
        const std::string& Path;
        const std::string& Name;
    };
    struct ValueEntry {
        std::string Name;  // ANSI
        uint32_t Type = 0;
        uint32_t Size = 0;  // bytes
    };
    using EnumerateName = int32_t (*)(platform::RegistryKey key, uint32_t index, char* name, uint32_t& length);

    bool SetLastError(int32_t result);
    bool Open(HeldKey& key, uint32_t root, const std::string& path, uint32_t rights);
    bool OpenForListing(HeldKey& key, uint32_t root, const std::string& path);
    ValueLocation Here(const std::string& name) const {
        return {RootKey_, KeyPath_, name};
    }

    bool ReadAt(const ValueLocation& at, std::string& text);
    bool ReadAt(const ValueLocation& at, int32_t& number);
    bool ReadAt(const ValueLocation& at, RegistryBytes& bytes);
    template <class Value>
    bool ReadAt(const ValueLocation& at, Value& value);
    template <class Value>
    bool ReadOr(const ValueLocation& at, Value& value, const Value& fallback);
    bool Store(const ValueLocation& at, uint32_t rights, uint32_t type, const void* data, size_t size);
    bool WriteAt(const ValueLocation& at, const std::string& text);
    bool WriteAt(const ValueLocation& at, const RegistryBytes& bytes);
    template <class Value>
    bool WriteAt(const ValueLocation& at, const Value& value);

    bool EnumValueEntry(platform::RegistryKey key, uint32_t index, uint32_t longestName, ValueEntry& entry);
    void EnumValueData(platform::RegistryKey key, uint32_t index, uint32_t longestName, std::span<uint8_t> data);
    int32_t EnumValueNumber(platform::RegistryKey key, uint32_t index, uint32_t longestName);
    int32_t EnumNames(uint32_t root, const std::string& path, std::vector<std::string>& names,
                      uint32_t platform::KeyInfo::*count, uint32_t platform::KeyInfo::*longest, EnumerateName next);
    std::string ExportLevel(uint32_t root, const std::string& path, bool includeSubKeys, int level);
    std::string ExportSubKeys(uint32_t root, const std::string& path, bool includeSubKeys, int level);
    std::string ExportData(platform::RegistryKey key, uint32_t index, uint32_t longestName, const ValueEntry& entry);

    uint32_t RootKey_ = platform::CurrentUserRoot;
    std::string KeyPath_ = "Software";
    int32_t LastError_ = 0;
};

}  // namespace corvane
