// Every kind of access that cRegistry offers, for tests that deny its rights or let its calls fail.
#pragma once

#include <functional>
#include <vector>

#include "tests/registry/registry_stage.h"

namespace corvane::test {

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
