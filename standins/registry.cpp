// A registry in memory. It behaves like the platform's as far as the driver can see through its ANSI functions. Keys
// and values are enumerated in the order of creation; the real one may sort them by name.
#include "platform/registry.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <memory>
#include <mutex>
#include <string_view>
#include <vector>

#include "standins/registry_hooks.h"

namespace corvane::platform {

namespace {

// The platform's result codes.
constexpr int32_t Success = 0;
constexpr int32_t NotFound = 2;
constexpr int32_t AccessDenied = 5;
constexpr int32_t InvalidHandle = 6;
constexpr int32_t InvalidParameter = 87;
constexpr int32_t BadPath = 161;
constexpr int32_t MoreData = 234;
constexpr int32_t NoMoreItems = 259;
constexpr int32_t KeyDeleted = 1018;

constexpr size_t LongestPath = 260;         // characters that the ANSI functions have room for
constexpr size_t LongestValueName = 16383;  // characters
constexpr uint32_t AllRights = ~0u;

struct StoredValue {
    std::string Name;
    uint32_t Type = 0;
    std::string Data;
};

struct Key {
    explicit Key(std::string_view name) : Name(name) {}

    std::string Name;
    uint32_t DeniedRights = 0;
    bool Deleted = false;
    std::vector<std::shared_ptr<Key>> SubKeys;
    std::vector<StoredValue> Values;
};

struct OpenedKey {
    std::shared_ptr<Key> Target;
    uint32_t Rights = 0;
};

struct Registry {
    std::mutex Lock;
    std::map<RegistryKey, OpenedKey> Opened;  // the predefined roots too
    RegistryKey NextHandle = 0x100;
    int Calls = 0;
    int InterceptedCalls = 0;
    bool Intercepting = false;  // the interceptor's own calls are not intercepted
    RegistryInterceptor Interceptor;

    Registry() { Clear(); }

    void Clear() {
        Opened.clear();
        for (RegistryKey root = 0x80000000; root <= 0x80000005; root++) {
            Opened[root] = {std::make_shared<Key>(""), AllRights};
        }
        Opened[CurrentUserRoot].Target->SubKeys.push_back(std::make_shared<Key>("Software"));
        Calls = 0;
        Interceptor = nullptr;
    }
};

Registry& TheRegistry() {
    static Registry registry;
    return registry;
}

// Cyrillic letters of the code page whose two cases are not 0x20 apart, in pairs: upper case, lower case.
constexpr std::string_view CasePairs =
    "\xA8\xB8\x80\x90\x81\x83\x8A\x9A\x8C\x9C\x8D\x9D\x8E\x9E\x8F\x9F\xA1\xA2\xA3\xBC\xA5\xB4\xAA\xBA\xAF\xBF\xB2\xB3"
    "\xBD\xBE";

char UpperCase(char character) {
    const auto byte = static_cast<unsigned char>(character);
    if ((byte >= 'a' && byte <= 'z') || byte >= 0xE0) return static_cast<char>(byte - 0x20);
    const size_t pair = CasePairs.find(character);
    return pair != std::string_view::npos && pair % 2 == 1 ? CasePairs[pair - 1] : character;
}

bool SameName(std::string_view left, std::string_view right) {
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [](char a, char b) { return UpperCase(a) == UpperCase(b); });
}

template <class Items>
auto FindNamed(Items& items, std::string_view name) {
    return std::find_if(items.begin(), items.end(), [&](const auto& each) {
        if constexpr (requires { each->Name; }) {
            return SameName(each->Name, name);
        } else {
            return SameName(each.Name, name);
        }
    });
}

std::string_view UpToZero(const std::string& text) {
    return std::string_view(text).substr(0, text.find('\0'));
}

int32_t CheckPath(std::string_view path) {
    if (path.size() > LongestPath) return MoreData;
    return path.starts_with('\\') ? BadPath : Success;
}

std::vector<std::string_view> PathParts(std::string_view path) {
    std::vector<std::string_view> parts;
    while (!path.empty()) {
        const std::string_view part = path.substr(0, path.find('\\'));
        if (!part.empty()) parts.push_back(part);
        path.remove_prefix(std::min(path.size(), part.size() + 1));
    }
    return parts;
}

// The key, null when it is missing; `parent` becomes the key that it hangs on.
std::shared_ptr<Key> Walk(std::shared_ptr<Key> key, std::string_view path, std::shared_ptr<Key>* parent = nullptr) {
    for (const std::string_view part : PathParts(path)) {
        const auto found = FindNamed(key->SubKeys, part);
        if (found == key->SubKeys.end()) return nullptr;
        if (parent != nullptr) *parent = key;
        key = *found;
    }
    return key;
}

// Creates what is missing; null when a key forbids a new subkey.
std::shared_ptr<Key> WalkAndCreate(std::shared_ptr<Key> key, std::string_view path) {
    for (const std::string_view part : PathParts(path)) {
        auto found = FindNamed(key->SubKeys, part);
        if (found == key->SubKeys.end()) {
            if ((key->DeniedRights & CreateSubKeyRight) != 0) return nullptr;
            key->SubKeys.push_back(std::make_shared<Key>(part));
            found = key->SubKeys.end() - 1;
        }
        key = *found;
    }
    return key;
}

// Runs one call of the platform: interceptor first, then, under the lock, the handle and its rights, then `work`.
template <class Work>
int32_t Call(RegistryKey handle, uint32_t rights, Work work) {
    Registry& registry = TheRegistry();
    std::unique_lock lock(registry.Lock);
    registry.Calls++;
    if (registry.Interceptor && !registry.Intercepting) {
        const RegistryInterceptor interceptor = registry.Interceptor;
        const int call = ++registry.InterceptedCalls;
        registry.Intercepting = true;
        lock.unlock();
        const int32_t result = interceptor(call);
        lock.lock();
        registry.Intercepting = false;
        if (result != Success) return result;
    }
    const auto found = registry.Opened.find(handle);
    if (found == registry.Opened.end()) return InvalidHandle;
    const OpenedKey opened = found->second;
    if (opened.Target->Deleted) return KeyDeleted;
    if ((opened.Rights & rights) != rights) return AccessDenied;
    return work(registry, opened.Target);
}

int32_t GiveHandle(Registry& registry, const std::shared_ptr<Key>& key, uint32_t rights, RegistryKey& handle) {
    if ((key->DeniedRights & rights) != 0) return AccessDenied;
    handle = registry.NextHandle++;
    registry.Opened[handle] = {key, rights};
    return Success;
}

bool IsText(uint32_t type) {
    return type == TextType || type == ExpandTextType || type == MultiTextType;
}

int32_t CopyData(const StoredValue& value, uint32_t* type, void* data, uint32_t& size) {
    const uint32_t room = size;
    const std::string& stored = value.Data;
    if (type != nullptr) *type = value.Type;
    size = static_cast<uint32_t>(stored.size());
    if (data == nullptr || stored.empty()) return Success;
    if (size > room) return MoreData;
    std::memcpy(data, stored.data(), stored.size());
    // The platform adds a terminator to a text without one when there is room.
    if (IsText(value.Type) && size < room && stored.back() != '\0') static_cast<char*>(data)[size] = '\0';
    return Success;
}

}  // namespace

int32_t OpenKey(RegistryKey parent, const std::string& path, uint32_t rights, RegistryKey& key) {
    key = 0;
    return Call(parent, 0, [&](Registry& registry, const std::shared_ptr<Key>& from) {
        if (const int32_t fault = CheckPath(UpToZero(path)); fault != Success) return fault;
        const std::shared_ptr<Key> found = Walk(from, UpToZero(path));
        return found ? GiveHandle(registry, found, rights, key) : NotFound;
    });
}

int32_t CreateKey(RegistryKey parent, const std::string& path, uint32_t rights, RegistryKey& key) {
    key = 0;
    return Call(parent, 0, [&](Registry& registry, const std::shared_ptr<Key>& from) {
        if (const int32_t fault = CheckPath(UpToZero(path)); fault != Success) return fault;
        const std::shared_ptr<Key> created = WalkAndCreate(from, UpToZero(path));
        return created ? GiveHandle(registry, created, rights, key) : AccessDenied;
    });
}

void CloseKey(RegistryKey key) {
    Registry& registry = TheRegistry();
    const std::lock_guard lock(registry.Lock);
    if (key < 0x80000000) registry.Opened.erase(key);
}

int32_t DeleteKey(RegistryKey parent, const std::string& path) {
    return Call(parent, 0, [&](Registry&, const std::shared_ptr<Key>& from) {
        if (const int32_t fault = CheckPath(UpToZero(path)); fault != Success) return fault;
        std::shared_ptr<Key> holder;
        const std::shared_ptr<Key> key = Walk(from, UpToZero(path), &holder);
        if (!key) return NotFound;
        if (!key->SubKeys.empty() || !holder) return AccessDenied;
        key->Deleted = true;
        std::erase(holder->SubKeys, key);
        return Success;
    });
}

int32_t QueryKeyInfo(RegistryKey key, KeyInfo& info) {
    info = {};
    return Call(key, 0, [&](Registry&, const std::shared_ptr<Key>& target) {
        info.SubKeys = static_cast<uint32_t>(target->SubKeys.size());
        info.Values = static_cast<uint32_t>(target->Values.size());
        for (const auto& each : target->SubKeys) {
            info.LongestSubKey = std::max(info.LongestSubKey, static_cast<uint32_t>(each->Name.size()));
        }
        for (const StoredValue& each : target->Values) {
            info.LongestValueName = std::max(info.LongestValueName, static_cast<uint32_t>(each.Name.size()));
        }
        return Success;
    });
}

int32_t EnumKeyName(RegistryKey key, uint32_t index, char* name, uint32_t& length) {
    return Call(key, EnumerateSubKeysRight, [&](Registry&, const std::shared_ptr<Key>& target) {
        if (index >= target->SubKeys.size()) return NoMoreItems;
        const std::string& found = target->SubKeys[index]->Name;
        if (found.size() >= length) return MoreData;
        std::memcpy(name, found.c_str(), found.size() + 1);
        length = static_cast<uint32_t>(found.size());
        return Success;
    });
}

int32_t QueryKeyValue(RegistryKey key, const std::string& name, uint32_t* type, void* data, uint32_t& size) {
    return Call(key, QueryValueRight, [&](Registry&, const std::shared_ptr<Key>& target) {
        const auto found = FindNamed(target->Values, UpToZero(name));
        return found == target->Values.end() ? NotFound : CopyData(*found, type, data, size);
    });
}

int32_t EnumKeyValue(RegistryKey key, uint32_t index, char* name, uint32_t& length, uint32_t* type, void* data,
                     uint32_t& size) {
    return Call(key, QueryValueRight, [&](Registry&, const std::shared_ptr<Key>& target) {
        if (index >= target->Values.size()) return NoMoreItems;
        const StoredValue& value = target->Values[index];
        if (const int32_t result = CopyData(value, type, data, size); result != Success) return result;
        if (value.Name.size() >= length) {  // as many characters as have room; `length` stays
            if (length == 0) return MoreData;
            std::memcpy(name, value.Name.data(), length - 1);
            name[length - 1] = '\0';
            return MoreData;
        }
        std::memcpy(name, value.Name.c_str(), value.Name.size() + 1);
        length = static_cast<uint32_t>(value.Name.size());
        return Success;
    });
}

int32_t SetKeyValue(RegistryKey key, const std::string& name, uint32_t type, const void* data, uint32_t size) {
    return Call(key, SetValueRight, [&](Registry&, const std::shared_ptr<Key>& target) {
        const std::string_view given = UpToZero(name);
        if (given.size() > LongestValueName) return InvalidParameter;
        const char* bytes = static_cast<const char*>(data);
        if (IsText(type) && size > 0 && bytes[size - 1] != '\0' && bytes[size] == '\0') size++;
        auto found = FindNamed(target->Values, given);
        if (found == target->Values.end()) {
            found = target->Values.insert(found, {std::string(given), type, {}});
        }
        found->Type = type;
        found->Data.assign(bytes, size);
        return Success;
    });
}

int32_t DeleteKeyValue(RegistryKey key, const std::string& name) {
    return Call(key, SetValueRight, [&](Registry&, const std::shared_ptr<Key>& target) {
        const auto found = FindNamed(target->Values, UpToZero(name));
        if (found == target->Values.end()) return NotFound;
        target->Values.erase(found);
        return Success;
    });
}

void ClearRegistry() {
    Registry& registry = TheRegistry();
    const std::lock_guard lock(registry.Lock);
    registry.Clear();
}

void InterceptRegistry(RegistryInterceptor interceptor) {
    Registry& registry = TheRegistry();
    const std::lock_guard lock(registry.Lock);
    registry.Interceptor = std::move(interceptor);
    registry.InterceptedCalls = 0;
}

int RegistryCalls() {
    Registry& registry = TheRegistry();
    const std::lock_guard lock(registry.Lock);
    return registry.Calls;
}

int OpenRegistryKeys() {
    Registry& registry = TheRegistry();
    const std::lock_guard lock(registry.Lock);
    return static_cast<int>(std::count_if(registry.Opened.begin(), registry.Opened.end(),
                                          [](const auto& each) { return each.first < 0x80000000; }));
}

void StoreValue(RegistryKey root, const std::string& path, const std::string& name, uint32_t type,
                const std::string& data) {
    Registry& registry = TheRegistry();
    const std::lock_guard lock(registry.Lock);
    const std::shared_ptr<Key> key = WalkAndCreate(registry.Opened.at(root).Target, path);
    auto found = FindNamed(key->Values, name);
    if (found == key->Values.end()) found = key->Values.insert(found, {name, type, {}});
    found->Type = type;
    found->Data = data;
}

void StoreSubKey(RegistryKey root, const std::string& path, const std::string& name) {
    Registry& registry = TheRegistry();
    const std::lock_guard lock(registry.Lock);
    const std::shared_ptr<Key> key = WalkAndCreate(registry.Opened.at(root).Target, path);
    key->SubKeys.push_back(std::make_shared<Key>(name));
}

void DenyRights(RegistryKey root, const std::string& path, uint32_t rights) {
    Registry& registry = TheRegistry();
    const std::lock_guard lock(registry.Lock);
    WalkAndCreate(registry.Opened.at(root).Target, path)->DeniedRights = rights;
}

}  // namespace corvane::platform
