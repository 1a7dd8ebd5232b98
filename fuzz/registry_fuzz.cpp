// cRegistry on a registry with any content, which fails and changes between any two calls.
#include "fuzz/fuzz_input.h"
#include "platform/portable/registry_hooks.h"
#include "settings/cRegistry.h"

namespace corvane {
namespace {

using platform::CurrentUserRoot;

constexpr int MostCalls = 200000;  // far beyond what any of the small trees here needs

const std::string& Path(uint8_t choice) {
    static const std::string paths[] = {"Software\\F", "Software\\F\\a", "Software\\F\\a\\b", "Software\\F\\\xE6"};
    return paths[choice % 4];
}

// One change of the registry.
void Change(FuzzInput& input) {
    const uint8_t kind = input.Byte();
    const std::string& path = Path(input.Byte());
    if (kind < 160) {
        const uint8_t type = input.Byte();
        const std::string name = input.Text();
        platform::StoreValue(CurrentUserRoot, path, name, type % 16, input.Text());
    } else if (kind < 200) {
        platform::StoreSubKey(CurrentUserRoot, path, input.Text());
    } else if (kind < 230) {
        cRegistry().DeleteValue(CurrentUserRoot, path, input.Text());
    } else {
        cRegistry().DeleteKey(CurrentUserRoot, path);
    }
}

void Use(uint8_t operation, const std::string& path, const std::string& name) {
    cRegistry registry;
    RegistryValue any;
    RegistryBytes bytes;
    std::vector<std::string> names;
    std::string text;
    double real = 0;
    int32_t number = 0;
    switch (operation % 8) {
        case 0:
            text = registry.ExportKey(CurrentUserRoot, path, true);
            Require(text.empty() || text.starts_with("\r\n[HKEY_CURRENT_USER"), "an export begins with its key");
            break;
        case 1:
            Require(registry.QueryValue(CurrentUserRoot, path, name, any) != 0 || any.index() == 0,
                    "what is not found gives nothing");
            break;
        case 2:
            number = registry.EnumSubKeys(CurrentUserRoot, path, names);
            Require(names.size() == static_cast<size_t>(number) + 1 && names[0] == path, "path and subkeys");
            break;
        case 3:
            number = registry.EnumValues(CurrentUserRoot, path, names);
            Require(names.size() == static_cast<size_t>(number) + 1 && names[0] == path, "path and values");
            break;
        case 4:
            registry.ReadStringAt(CurrentUserRoot, path, name, text);
            Require(text.find('\0') == std::string::npos, "a text ends at its first zero");
            break;
        case 5:
            Require(registry.ReadBinaryAt(CurrentUserRoot, path, name, bytes) != bytes.empty(), "bytes or failure");
            break;
        case 6:
            registry.ReadDoubleAt(CurrentUserRoot, path, name, real);
            break;
        default:
            Require(registry.ReadDWordAt(CurrentUserRoot, path, name, number) || number == 0, "kept on failure");
    }
}

}  // namespace
}  // namespace corvane

// Bytes: how many changes build the tree, the changes; then operations, each followed by the changes and failures that
// befall it, one per call of the platform until the bytes end.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace corvane;
    FuzzInput input(data, size);
    platform::ClearRegistry();
    for (int changes = input.Byte() % 32; changes > 0 && !input.Empty(); changes--) Change(input);
    for (int operations = 0; operations < 16 && !input.Empty(); operations++) {
        const uint8_t operation = input.Byte();
        const std::string path = Path(input.Byte());
        const std::string name = input.Text();
        platform::InterceptRegistry([&](int call) {
            Require(call < MostCalls, "an end");
            const uint8_t event = input.Byte();
            if (event >= 192 && event < 224) Change(input);
            return event >= 224 ? int32_t{1450} : 0;
        });
        Use(operation, path, name);
        platform::InterceptRegistry(nullptr);
        Require(platform::OpenRegistryKeys() == 0, "every key closed");
    }
    return 0;
}
