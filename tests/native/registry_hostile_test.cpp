// cRegistry on a registry that fails, lies and changes between two calls.
#include <functional>

#include "platform/portable/registry_hooks.h"
#include "settings/cRegistry.h"
#include "tests/registry/registry_stage.h"

namespace corvane::test {
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

    // Before the call with this number "n" becomes something else, or goes away.
    void ChangeBefore(int call, std::function<void()> change) {
        platform::InterceptRegistry([=](int number) {
            if (number == call) change();
            return 0;
        });
    }
    static void Become(uint32_t type, const std::string& data) { StoreValue(CurrentUser, Stage, "n", type, data); }

    cRegistry Registry;
};

const std::string Head = "\r\n[HKEY_CURRENT_USER\\" + Stage + "]\r\n@=\"first\"\r\n";

// Call 1 opens, 2 learns the length, 3 reads.
TEST_F(HostileRegistry, ValuesThatChangeBetweenLengthAndDataGiveWhatFits) {
    const struct {
        uint32_t Type;
        std::string Data;
        std::string Text;
        bool BytesRead;
        std::string Bytes;
    } cases[] = {
        {BinaryType, "abcdefghi", "", false, "mine"},
        {BinaryType, "ab", "ab", true, "ab\0\0\0\0\0\0"s},
        {TextType, "", "", true, "\0\0\0\0\0\0\0\0"s},
    };
    for (const auto& each : cases) {
        const auto change = [&] { Become(each.Type, each.Data); };
        Become(BinaryType, "abcdefgh");
        std::string text = "mine";
        ChangeBefore(3, change);
        EXPECT_TRUE(Registry.ReadStringAt(CurrentUser, Stage, "n", text));
        EXPECT_EQ(each.Text, text);
        Become(BinaryType, "abcdefgh");
        RegistryBytes bytes = {'m', 'i', 'n', 'e'};
        ChangeBefore(3, change);
        EXPECT_EQ(each.BytesRead, Registry.ReadBinary("n", bytes));
        EXPECT_EQ(each.Bytes, std::string(bytes.begin(), bytes.end()));
        EXPECT_EQ(each.BytesRead ? 0 : 234, Registry.LastError());
    }
}

// Call 1 opens, 2 counts, 3 finds "", 4 finds "n", 5 reads it.
TEST_F(HostileRegistry, ListedValuesThatChangeLeaveTheBufferAsItWasFilled) {
    const struct {
        RawValue Before, After;
        RegistryValue Any;
        std::string Exported;
    } cases[] = {
        {{TextType, "abc\0"s}, {TextType, "abcdef\0"s}, "\0\0\0"s, "\"\""},
        {{TextType, "abc\0"s}, {TextType, "a\0"s}, "a\0\0"s, "\"a\""},
        {{TextType, "abc\0"s}, {TextType, "a"}, "a\0\0"s, "\"a\""},
        {{BinaryType, "abc"}, {BinaryType, "abcd"}, RegistryBytes{0, 0, 0}, "hex:00,00,00"},
        {{BinaryType, "abc"}, {BinaryType, "d"}, RegistryBytes{'d', 0, 0}, "hex:64,00,00"},
        {{DWordType, "\1\0\0\0"s}, {BinaryType, "abcdefgh"}, 0, "dword:00000000"},
        {{DWordType, "\1\0\0\0"s}, {BinaryType, "\2"}, 2, "dword:00000002"},
    };
    for (const auto& each : cases) {
        const auto change = [&] { Become(each.After.first, each.After.second); };
        Become(each.Before.first, each.Before.second);
        RegistryValue value;
        ChangeBefore(5, change);
        EXPECT_EQ(each.Before.first, Registry.QueryValue(CurrentUser, Stage, "n", value));
        EXPECT_EQ(each.Any, value) << each.Exported;
        Become(each.Before.first, each.Before.second);
        ChangeBefore(6, change);  // the export also reads the default value
        EXPECT_EQ(Head + "\"n\"=" + each.Exported + "\r\n", Registry.ExportKey(CurrentUser, Stage, false));
    }
}

TEST_F(HostileRegistry, NamesThatGrowOrVanishAreCutToTheirBuffer) {
    std::vector<std::string> names;
    // Longer than announced: as much as has room, with the terminator.
    ChangeBefore(3, [] {
        StoreValue(CurrentUser, Stage, "longer", DWordType, "");
        cRegistry().DeleteValue(CurrentUser, Stage, "n");
    });
    EXPECT_EQ(2, Registry.EnumValues(CurrentUser, Stage, names));
    EXPECT_EQ((std::vector<std::string>{Stage, "", "l\0"s}), names);
    // Gone meanwhile: the blank buffer.
    platform::StoreSubKey(CurrentUser, Stage, "abc");
    ChangeBefore(3, [] { cRegistry().DeleteKey(CurrentUser, Stage + "\\abc"); });
    EXPECT_EQ(1, Registry.EnumSubKeys(CurrentUser, Stage, names));
    EXPECT_EQ((std::vector<std::string>{Stage, "    "}), names);
    ChangeBefore(4, [] { cRegistry().DeleteValue(CurrentUser, Stage, "longer"); });
    EXPECT_EQ(Head.substr(0, Head.find('@')) + "@=\"first\"\r\n", Registry.ExportKey(CurrentUser, Stage, false));
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
    std::string deep = Stage;
    for (int level = 0; level < 400; level++) {
        platform::StoreSubKey(CurrentUser, deep, "d");
        deep += "\\d";
    }
    EXPECT_LT(Registry.ExportKey(CurrentUser, Stage, true).size(), 100000u) << "ends with the platform's longest path";
}

// Every operation with each of its calls failing: no key stays open, the code is kept, nothing is written.
TEST_F(HostileRegistry, EveryFailureEndsTheOperationCleanly) {
    std::string text;
    RegistryBytes bytes;
    RegistryValue any;
    std::vector<std::string> names;
    int32_t number = 5;
    double real = 5;
    const struct {
        const char* Name;
        int Calls;  // of the platform
        std::function<bool()> Works;
    } operations[] = {
        {"KeyExists", 1, [&] { return Registry.KeyExists(CurrentUser, Stage); }},
        {"DeleteKey", 2, [&] { return Registry.DeleteKey(CurrentUser, Stage); }},
        {"CreateKey", 1, [&] { return Registry.CreateKey(CurrentUser, Stage, ""); }},
        {"DeleteValue", 2, [&] { return Registry.DeleteValue(CurrentUser, Stage, "n"); }},
        {"WriteString", 2, [&] { return Registry.WriteString("n", "x"); }},
        {"WriteDWord", 2, [&] { return Registry.WriteDWord("n", 1); }},
        {"WriteBinary", 2, [&] { return Registry.WriteBinary("n", {1}); }},
        {"ReadDWord", 2, [&] { return Registry.ReadDWordAt(CurrentUser, Stage, "n", number); }},
        {"ReadDouble", 3, [&] { return Registry.ReadDoubleAt(CurrentUser, Stage, "n", real); }},
        {"ReadBinary", 3, [&] { return Registry.ReadBinary("n", bytes); }},
        {"HoldsDWord", 2, [&] { return Registry.HoldsDWord("n"); }},
        {"ReadString", 2, [&] { return Registry.ReadStringAt(CurrentUser, Stage, "n", text); }},
        {"QueryValue", 2, [&] { return Registry.QueryValue(CurrentUser, Stage, "n", any) != 0; }},
        {"EnumSubKeys", 2, [&] { return Registry.EnumSubKeys(CurrentUser, Stage, names) != 0; }},
        {"EnumValues", 2, [&] { return Registry.EnumValues(CurrentUser, Stage, names) != 0; }},
    };
    for (const auto& each : operations) {
        for (int failing = 1; failing <= each.Calls; failing++) {
            platform::InterceptRegistry([=](int call) { return call == failing ? 1450 : 0; });
            EXPECT_FALSE(each.Works()) << each.Name << " with call " << failing << " failing";
            EXPECT_EQ(0, platform::OpenRegistryKeys()) << each.Name;
            EXPECT_EQ(1450, Registry.LastError()) << each.Name;
        }
        EXPECT_EQ((RawValue{BinaryType, "abcdefgh"}), LoadRaw(Stage, "n")) << each.Name;
    }
    EXPECT_EQ(5, number);
    EXPECT_EQ(5, real);
    EXPECT_EQ("", text);
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
