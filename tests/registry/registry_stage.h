// A key of the tests' own in the registry under test: the one in memory natively, the real one on Windows.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/registry.h"
#include "settings/registry/cRegistry.h"

namespace corvane::test {

constexpr uint32_t CurrentUser = platform::CurrentUserRoot;
inline const std::string Stage = "Software\\CorvaneTest";

using RawValue = std::pair<uint32_t, std::string>;  // type and bytes

// From now on opening this key, below HKEY_CURRENT_USER, with any of these rights is refused.
void DenyRights(const std::string& path, uint32_t rights);

// Stores exactly these bytes, without the terminator that the platform would add to a text.
inline void StoreRaw(const std::string& path, const std::string& name, uint32_t type, const std::string& data) {
    platform::RegistryKey key = 0;
    ASSERT_EQ(0, platform::CreateKey(CurrentUser, path, platform::SetValueRight, key)) << path;
    EXPECT_EQ(0, platform::SetKeyValue(key, name, type, (data + "!").c_str(), static_cast<uint32_t>(data.size())));
    platform::CloseKey(key);
}

inline std::optional<RawValue> LoadRaw(const std::string& path, const std::string& name) {
    platform::RegistryKey key = 0;
    if (platform::OpenKey(CurrentUser, path, platform::QueryValueRight, key) != 0) return std::nullopt;
    RawValue value = {0, std::string(1024, '\0')};
    uint32_t size = 1024;
    const int32_t result = platform::QueryKeyValue(key, name, &value.first, value.second.data(), size);
    platform::CloseKey(key);
    value.second.resize(size);
    return result == 0 ? std::optional(value) : std::nullopt;
}

inline void DeleteTree(const std::string& path) {
    cRegistry registry;
    std::vector<std::string> names;
    registry.EnumSubKeys(CurrentUser, path, names);
    for (size_t i = 1; i < names.size(); i++) DeleteTree(path + "\\" + names[i]);
    registry.DeleteKey(CurrentUser, path);
}

// The key is there and empty when a test begins, and gone when it has ended.
class RegistryStage : public testing::Test {
protected:
    void SetUp() override {
        DeleteTree(Stage);
        Registry.SetKeyPath(Stage);
        ASSERT_TRUE(Registry.KeyExists(CurrentUser, Stage));
    }
    void TearDown() override { DeleteTree(Stage); }

    cRegistry Registry;
};

// Every kind of access that cRegistry offers, for tests that deny its rights or let its calls fail.
struct RegistryOperation {
    const char* Name;
    uint32_t Rights;  // that it asks for
    int Calls;        // of the platform, without any of which it fails
    std::function<bool(cRegistry&)> Works;
};

// On `key` and its value "n"; DeleteKey on the subkey "sub".
inline std::vector<RegistryOperation> RegistryOperations(const std::string& key) {
    static RegistryValue any;
    static std::vector<std::string> names;
    static std::string text;
    static int32_t number;
    static double real;
    static RegistryBytes bytes;
    return {
        {"KeyExists", 0x20009, 1, [=](auto& registry) { return registry.KeyExists(CurrentUser, key); }},
        {"CreateKey", 4, 1, [=](auto& registry) { return registry.CreateKey(CurrentUser, key, ""); }},
        {"QueryValue", 0x20009, 2,
         [=](auto& registry) { return registry.QueryValue(CurrentUser, key, "n", any) != 0; }},
        {"EnumSubKeys", 0x20009, 2, [=](auto& registry) { return registry.EnumSubKeys(CurrentUser, key, names) == 1; }},
        {"EnumValues", 0x20009, 2, [=](auto& registry) { return registry.EnumValues(CurrentUser, key, names) != 0; }},
        {"ExportKey", 0x20009, 1, [=](auto& registry) { return !registry.ExportKey(CurrentUser, key, false).empty(); }},
        {"ReadString", 1, 2, [=](auto& registry) { return registry.ReadStringAt(CurrentUser, key, "n", text); }},
        {"ReadDWord", 1, 2, [=](auto& registry) { return registry.ReadDWordAt(CurrentUser, key, "n", number); }},
        {"ReadDouble", 1, 3, [=](auto& registry) { return registry.ReadDoubleAt(CurrentUser, key, "n", real); }},
        {"ReadBinary", 1, 3, [=](auto& registry) { return registry.ReadBinaryAt(CurrentUser, key, "n", bytes); }},
        {"WriteString", 2, 2, [=](auto& registry) { return registry.WriteStringAt(CurrentUser, key, "n", "a"); }},
        {"WriteBinary", 2, 2, [=](auto& registry) { return registry.WriteBinaryAt(CurrentUser, key, "n", {1}); }},
        {"WriteDouble", 2, 2, [=](auto& registry) { return registry.WriteDoubleAt(CurrentUser, key, "n", 1); }},
        {"WriteDWord", 0x20006, 2, [=](auto& registry) { return registry.WriteDWordAt(CurrentUser, key, "n", 1); }},
        {"DeleteValue", 0x20006, 2, [=](auto& registry) { return registry.DeleteValue(CurrentUser, key, "n"); }},
        {"DeleteKey", 0x20006, 2, [=](auto& registry) { return registry.DeleteKey(CurrentUser, key + "\\sub"); }},
    };
}

}  // namespace corvane::test
