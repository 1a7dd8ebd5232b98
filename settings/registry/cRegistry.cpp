// Location, keys and typed values; listings and export are in registry_export.cpp.
#include "settings/registry/cRegistry.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <iterator>
#include <type_traits>

#include "base/utf8.h"
#include "platform/ansi_text.h"
#include "platform/message_text.h"

namespace corvane {

namespace {

using namespace platform;

constexpr uint32_t ReadRights = QueryValueRight | EnumerateSubKeysRight | ReadControlRight;
constexpr uint32_t ChangeRights = SetValueRight | CreateSubKeyRight | ReadControlRight;
constexpr uint32_t MessageRoom = 256;  // characters

static_assert(std::endian::native == std::endian::little, "numbers are stored as their bytes in memory");

std::string StripAtNull(const std::string& text) {
    return text.substr(0, text.find('\0'));
}

// Where the last character of a UTF-8 text begins.
size_t LastCharacter(const std::string& text) {
    size_t start = text.size();
    while (start > 0 && !StartsCharacter(text[--start])) continue;
    return start;
}

}  // namespace

cRegistry::HeldKey::~HeldKey() {
    if (Opened) CloseKey(Handle);
}

bool cRegistry::SetLastError(int32_t result) {
    LastError_ = result;
    return result == 0;
}

bool cRegistry::Open(HeldKey& key, uint32_t root, const std::string& path, uint32_t rights) {
    key.Opened = SetLastError(OpenKey(root, ToAnsi(path), rights, key.Handle));
    return key.Opened;
}

bool cRegistry::OpenForListing(HeldKey& key, uint32_t root, const std::string& path) {
    if (!path.empty()) return Open(key, root, path, ReadRights);
    key.Handle = root;
    return true;
}

void cRegistry::SetRootKey(uint32_t root) {
    if (root == RootKey_ || !KeyExists(root, "")) return;
    RootKey_ = root;
    SetKeyPath("");
}

void cRegistry::SetKeyPath(const std::string& path) {
    if (path == KeyPath_) return;
    if (KeyExists(RootKey_, path) || CreateKey(RootKey_, path, "")) KeyPath_ = path;
}

std::string cRegistry::SystemErrorText(int32_t code, bool cutAtPeriod) {
    std::string text = FromAnsi(SystemMessage(code, MessageRoom));
    text.resize(text.size() - std::min<size_t>(text.size(), 2));  // CR LF
    return cutAtPeriod ? text.substr(0, text.find('.')) : text;
}

std::string cRegistry::LastErrorText() const {
    std::string text = SystemErrorText(LastError_, false);
    if (CharacterCount(text) > 4) text.resize(LastCharacter(text));
    return text;
}

std::string cRegistry::RootKeyName(uint32_t root) {
    static constexpr const char* Names[] = {"HKEY_CLASSES_ROOT", "HKEY_CURRENT_USER",     "HKEY_LOCAL_MACHINE",
                                            "HKEY_USERS",        "HKEY_PERFORMANCE_DATA", "HKEY_CURRENT_CONFIG",
                                            "HKEY_DYN_DATA"};
    const uint32_t index = root - 0x80000000;
    return index < std::size(Names) ? Names[index] : "";
}

bool cRegistry::KeyExists(uint32_t root, const std::string& path) {
    HeldKey key;
    return Open(key, root, path, ReadRights);
}

bool cRegistry::CreateKey(uint32_t root, const std::string& path, const std::string& defaultText) {
    {
        HeldKey key;
        key.Opened = SetLastError(platform::CreateKey(root, ToAnsi(path), CreateSubKeyRight, key.Handle));
        if (!key.Opened) return false;
    }
    if (!defaultText.empty()) WriteStringAt(root, path, "", defaultText);
    return true;
}

bool cRegistry::DeleteKey(uint32_t root, const std::string& path) {
    HeldKey key;
    return Open(key, root, path, ChangeRights) && SetLastError(platform::DeleteKey(root, ToAnsi(path)));
}

bool cRegistry::DeleteValue(uint32_t root, const std::string& path, const std::string& name) {
    HeldKey key;
    return Open(key, root, path, ChangeRights) && SetLastError(DeleteKeyValue(key.Handle, ToAnsi(name)));
}

// When the length can be read, the text counts as read. If the value becomes longer before the second call, that call
// fails, the buffer keeps its zeros, and the text is empty.
bool cRegistry::ReadAt(const ValueLocation& at, std::string& text) {
    HeldKey key;
    if (!Open(key, at.Root, at.Path, QueryValueRight)) return false;
    const std::string name = ToAnsi(at.Name);
    uint32_t size = 0;
    if (!SetLastError(QueryKeyValue(key.Handle, name, nullptr, nullptr, size))) return false;
    std::string buffer(size_t{size} + 1, '\0');
    if (size > 0) SetLastError(QueryKeyValue(key.Handle, name, nullptr, buffer.data(), size));
    text = FromAnsi(StripAtNull(buffer));
    return true;
}

bool cRegistry::ReadAt(const ValueLocation& at, int32_t& number) {
    HeldKey key;
    if (!Open(key, at.Root, at.Path, QueryValueRight)) return false;
    int32_t stored = number;
    uint32_t size = sizeof stored;
    if (!SetLastError(QueryKeyValue(key.Handle, ToAnsi(at.Name), nullptr, &stored, size))) return false;
    number = stored;
    return true;
}

bool cRegistry::ReadAt(const ValueLocation& at, RegistryBytes& bytes) {
    HeldKey key;
    if (!Open(key, at.Root, at.Path, QueryValueRight)) return false;
    const std::string name = ToAnsi(at.Name);
    uint32_t size = 0;
    if (!SetLastError(QueryKeyValue(key.Handle, name, nullptr, nullptr, size)) || size == 0) return false;
    RegistryBytes stored(size);  // stays this long also if the value becomes shorter now
    if (!SetLastError(QueryKeyValue(key.Handle, name, nullptr, stored.data(), size))) return false;
    bytes = std::move(stored);
    return true;
}

template <class Value>
bool cRegistry::ReadAt(const ValueLocation& at, Value& value) {
    if constexpr (sizeof value == sizeof(int64_t)) {
        RegistryBytes bytes;
        if (!ReadAt(at, bytes) || bytes.size() != sizeof value) return false;
        std::memcpy(&value, bytes.data(), sizeof value);
    } else {
        int32_t number = 0;
        if (!ReadAt(at, number)) return false;
        if constexpr (std::is_same_v<Value, bool>) {
            value = number != 0;
        } else {
            std::memcpy(&value, &number, sizeof value);
        }
    }
    return true;
}

template <class Value>
bool cRegistry::ReadOr(const ValueLocation& at, Value& value, const Value& fallback) {
    if (ReadAt(at, value)) return true;
    if constexpr (std::is_same_v<Value, std::string>) {
        if (fallback.empty()) return false;
    }
    value = fallback;
    return false;
}

bool cRegistry::Store(const ValueLocation& at, uint32_t rights, uint32_t type, const void* data, size_t size) {
    HeldKey key;
    return Open(key, at.Root, at.Path, rights) &&
           SetLastError(SetKeyValue(key.Handle, ToAnsi(at.Name), type, data, static_cast<uint32_t>(size)));
}

// The length that is passed does not count the terminator; the platform finds it after the text and stores it too.
bool cRegistry::WriteAt(const ValueLocation& at, const std::string& text) {
    const std::string ansi = ToAnsi(text);
    return Store(at, SetValueRight, TextType, ansi.c_str(), ansi.size());
}

bool cRegistry::WriteAt(const ValueLocation& at, const RegistryBytes& bytes) {
    return !bytes.empty() && Store(at, SetValueRight, BinaryType, bytes.data(), bytes.size());
}

template <class Value>
bool cRegistry::WriteAt(const ValueLocation& at, const Value& value) {
    if constexpr (sizeof value == sizeof(int64_t)) {
        return Store(at, SetValueRight, BinaryType, &value, sizeof value);
    } else {
        uint32_t number = 0;
        std::memcpy(&number, &value, sizeof value);
        return Store(at, ChangeRights, DWordType, &number, sizeof number);
    }
}

#define CORVANE_REGISTRY_MEMBERS(F, T)                                                                              \
    void cRegistry::Set##F##Value(const std::string& name, const T& value) {                                        \
        WriteAt(Here(name), value);                                                                                 \
    }                                                                                                               \
    bool cRegistry::Write##F(const std::string& name, const T& value) {                                             \
        return WriteAt(Here(name), value);                                                                          \
    }                                                                                                               \
    bool cRegistry::Read##F##At(uint32_t root, const std::string& path, const std::string& name, T& value) {        \
        return ReadAt({root, path, name}, value);                                                                   \
    }                                                                                                               \
    bool cRegistry::Write##F##At(uint32_t root, const std::string& path, const std::string& name, const T& value) { \
        return WriteAt({root, path, name}, value);                                                                  \
    }
#define CORVANE_REGISTRY_READERS(F, T)                                              \
    T cRegistry::F##Value(const std::string& name) {                                \
        T value = {};                                                               \
        ReadAt(Here(name), value);                                                  \
        return value;                                                               \
    }                                                                               \
    bool cRegistry::Read##F(const std::string& name, T& value, const T& fallback) { \
        return ReadOr(Here(name), value, fallback);                                 \
    }

CORVANE_REGISTRY_FAMILIES(CORVANE_REGISTRY_MEMBERS)
CORVANE_REGISTRY_FAMILIES(CORVANE_REGISTRY_READERS)
CORVANE_REGISTRY_MEMBERS(Binary, RegistryBytes)

RegistryBytes cRegistry::BinaryValue(const std::string& name) {
    RegistryBytes value = {0};
    ReadAt(Here(name), value);
    return value;
}

bool cRegistry::ReadBinary(const std::string& name, RegistryBytes& value) {
    return ReadAt(Here(name), value);
}

}  // namespace corvane
