// cRegistry on a registry that fails, lies and changes between two calls.
#include "platform/portable/registry_hooks.h"
#include "tests/registry/registry_operations.h"

namespace corvane::test {

void DenyRights(const std::string& path, uint32_t rights) {
    platform::DenyRights(CurrentUser, path, rights);
}

namespace {

using namespace std::string_literals;
using platform::BinaryType;
using platform::DWordType;
using platform::StoreValue;
using platform::TextType;

class HostileRegistry : public testing::Test {
protected:
    void SetUp() override {
        platform::ClearRegistry();
        StoreValue(CurrentUser, Stage, "", TextType, "first\0"s);
        StoreValue(CurrentUser, Stage, "n", BinaryType, "abcdefgh");
        Registry.SetKeyPath(Stage);
    }
    void TearDown() override {
        platform::InterceptRegistry(nullptr);
        EXPECT_EQ(0, platform::OpenRegistryKeys());
    }

    // "n" becomes something else before the call with this number.
    static void ChangeBefore(int call, const RawValue& before, const RawValue& after) {
        StoreValue(CurrentUser, Stage, "n", before.first, before.second);
        platform::InterceptRegistry([=](int number) {
            if (number == call) StoreValue(CurrentUser, Stage, "n", after.first, after.second);
            return 0;
        });
    }

    cRegistry Registry;
};

const std::string Head = "\r\n[HKEY_CURRENT_USER\\" + Stage + "]\r\n@=\"first\"\r\n";

TEST_F(HostileRegistry, ValuesThatChangeBetweenLengthAndDataGiveWhatFits) {
    // What it becomes, the text and the bytes that are read, the error of the bytes.
    const std::tuple<RawValue, std::string, std::string, int32_t> cases[] = {
        {{BinaryType, "abcdefghi"}, "", "mine", 234},
        {{BinaryType, "ab"}, "ab", "ab\0\0\0\0\0\0"s, 0},
        {{TextType, ""}, "", "\0\0\0\0\0\0\0\0"s, 0},
    };
    constexpr int reading = 3;  // 1 opens, 2 learns the length
    for (const auto& [after, readText, readBytes, error] : cases) {
        std::string text = "mine";
        ChangeBefore(reading, {BinaryType, "abcdefgh"}, after);
        EXPECT_TRUE(Registry.ReadStringAt(CurrentUser, Stage, "n", text));
        EXPECT_EQ(readText, text);
        RegistryBytes bytes = {'m', 'i', 'n', 'e'};
        ChangeBefore(reading, {BinaryType, "abcdefgh"}, after);
        EXPECT_EQ(error == 0, Registry.ReadBinary("n", bytes));
        EXPECT_EQ(readBytes, std::string(bytes.begin(), bytes.end()));
        EXPECT_EQ(error, Registry.LastError());
    }
}

TEST_F(HostileRegistry, NamesThatNoAnsiCallCanOpenEndTheDescent) {
    platform::StoreSubKey(CurrentUser, Stage, "\0evil"s);  // would open the stage again
    platform::StoreSubKey(CurrentUser, Stage, "a\0b"s);
    platform::StoreSubKey(CurrentUser, Stage, "");
    platform::StoreSubKey(CurrentUser, Stage + "\\a", "c");
    const std::string text = Registry.ExportKey(CurrentUser, Stage, true);
    EXPECT_EQ(Head + "\"n\"=hex:61,62,63,64,65,66,67,68\r\n" + "\r\n[HKEY_CURRENT_USER\\" + Stage +
                  "\\a]\r\n\r\n[HKEY_CURRENT_USER\\" + Stage + "\\a\\c]\r\n",
              text);
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
}

TEST_F(HostileRegistry, TheSameLocationIsAssignedWithoutACall) {
    const int calls = platform::RegistryCalls();
    Registry.SetKeyPath(Stage);
    Registry.SetRootKey(CurrentUser);
    EXPECT_EQ(calls, platform::RegistryCalls());
}

}  // namespace
}  // namespace corvane::test
