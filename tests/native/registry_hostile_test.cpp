// cRegistry on a registry that fails, lies and changes between two calls.
#include "standins/registry_hooks.h"
#include "tests/registry/registry_operations.h"

namespace corvane::test {

void DenyRights(const std::string& path, uint32_t rights) {
    platform::DenyRights(CurrentUser, path, rights);
}

namespace {

using namespace std::string_literals;
using platform::BinaryType;
using platform::StoreValue;

class HostileRegistry : public testing::Test {
protected:
    void SetUp() override {
        platform::ClearRegistry();
        StoreValue(CurrentUser, Stage, "n", BinaryType, "abcdefgh");
        Registry.SetKeyPath(Stage);
    }
    void TearDown() override {
        platform::InterceptRegistry(nullptr);
        EXPECT_EQ(0, platform::OpenRegistryKeys());
    }

    cRegistry Registry;
};

TEST_F(HostileRegistry, ValuesThatChangeBetweenLengthAndDataGiveWhatFits) {
    // What "n" becomes, what is then read of it as a text and as bytes, the error of the latter.
    const std::tuple<std::string, std::string, std::string, int32_t> cases[] = {
        {"abcdefghi", "", "mine", 234}, {"ab", "ab", "ab\0\0\0\0\0\0"s, 0}, {"", "", "\0\0\0\0\0\0\0\0"s, 0}};
    for (const auto& [after, readText, readBytes, error] : cases) {
        const auto change = [&after = after](int call) {
            if (call == 3) StoreValue(CurrentUser, Stage, "n", BinaryType, after);  // 1 opens, 2 learns the length
            return 0;
        };
        std::string text = "mine";
        platform::InterceptRegistry(change);
        EXPECT_TRUE(Registry.ReadStringAt(CurrentUser, Stage, "n", text));
        EXPECT_EQ(readText, text);
        StoreValue(CurrentUser, Stage, "n", BinaryType, "abcdefgh");
        RegistryBytes bytes = {'m', 'i', 'n', 'e'};
        platform::InterceptRegistry(change);
        EXPECT_EQ(error == 0, Registry.ReadBinary("n", bytes));
        EXPECT_EQ(readBytes, std::string(bytes.begin(), bytes.end()));
        EXPECT_EQ(error, Registry.LastError());
        StoreValue(CurrentUser, Stage, "n", BinaryType, "abcdefgh");
    }
}

TEST_F(HostileRegistry, NamesThatNoAnsiCallCanOpenEndTheDescent) {
    platform::StoreSubKey(CurrentUser, Stage, "\0evil"s);  // would open the stage again
    platform::StoreSubKey(CurrentUser, Stage, "a\0b"s);
    platform::StoreSubKey(CurrentUser, Stage, "");
    platform::StoreSubKey(CurrentUser, Stage + "\\a", "c");
    const std::string head = "\r\n[HKEY_CURRENT_USER\\" + Stage;
    EXPECT_EQ(head + "]\r\n\"n\"=hex:61,62,63,64,65,66,67,68\r\n" + head + "\\a]\r\n" + head + "\\a\\c]\r\n",
              Registry.ExportKey(CurrentUser, Stage, true));
}

// Every operation with each of its calls failing: no key stays open, the code is kept, nothing is written.
TEST_F(HostileRegistry, EveryFailureEndsTheOperationCleanly) {
    platform::StoreSubKey(CurrentUser, Stage, "sub");
    for (const RegistryOperation& each : RegistryOperations(Stage)) {
        for (int failing = 1; failing <= each.Calls; failing++) {
            platform::InterceptRegistry([=](int call) { return call == failing ? 1450 : 0; });
            EXPECT_FALSE(each.Works(Registry)) << each.Name << " with call " << failing << " failing";
            EXPECT_EQ(0, platform::OpenRegistryKeys()) << each.Name;
            EXPECT_EQ(1450, Registry.LastError()) << each.Name;
        }
        EXPECT_EQ((RawValue{BinaryType, "abcdefgh"}), LoadRaw(Stage, "n")) << each.Name;
    }
    platform::InterceptRegistry([](int) { return 1450; });
    EXPECT_EQ("", Registry.ExportKey(CurrentUser, Stage, true));
    const int calls = platform::RegistryCalls();
    Registry.SetKeyPath(Stage);
    Registry.SetRootKey(CurrentUser);
    EXPECT_EQ(calls, platform::RegistryCalls()) << "the same location is assigned without a call";
}

}  // namespace
}  // namespace corvane::test
