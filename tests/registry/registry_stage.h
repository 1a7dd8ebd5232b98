// A key of the tests' own in the registry under test: the one in memory natively, the real one on Windows.
#pragma once

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <utility>

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

}  // namespace corvane::test
