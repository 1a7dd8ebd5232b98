// The rules of cRegistry and of texts with inserts, the same on every platform. Names are created in alphabetical
// order: the real registry may list them so.
#include "common/mTypes3.h"
#include "platform/ansi_text.h"
#include "tests/registry/registry_stage.h"

namespace corvane::test {
namespace {

using namespace std::string_literals;
using platform::BinaryType;
using platform::DWordType;
using platform::TextType;

using RegistryTest = RegistryStage;

template <class Type, auto Value, auto SetValue, auto Read, auto Write, auto ReadAt, auto WriteAt>
void CheckFamily(cRegistry& registry, const Type& written, const Type& other, const RawValue& stored) {
    Type value = other;
    EXPECT_EQ(Type{}, (registry.*Value)("none"));
    EXPECT_FALSE((registry.*ReadAt)(CurrentUser, Stage, "none", value));
    EXPECT_EQ(other, value);
    EXPECT_EQ(2, registry.LastError());
    EXPECT_FALSE((registry.*Read)("none", value, written));
    EXPECT_EQ(written, value);

    EXPECT_TRUE((registry.*Write)("a", written));
    EXPECT_EQ(0, registry.LastError());
    EXPECT_EQ(stored, LoadRaw(Stage, "a"));
    value = other;
    EXPECT_TRUE((registry.*Read)("A", value, other)) << "names have no case";
    EXPECT_EQ(written, value);
    (registry.*SetValue)("b", written);
    EXPECT_EQ(written, (registry.*Value)("b"));
    EXPECT_TRUE((registry.*WriteAt)(CurrentUser, Stage, "", written));
    EXPECT_EQ(written, (registry.*Value)(""));
    EXPECT_FALSE((registry.*WriteAt)(CurrentUser, Stage + "\\none", "a", written));
    EXPECT_EQ(2, registry.LastError());
}

#define CHECK_FAMILY(F, Type, ...)                                                                                    \
    {                                                                                                                 \
        SCOPED_TRACE(#F);                                                                                             \
        CheckFamily<Type, &cRegistry::F##Value, &cRegistry::Set##F##Value, &cRegistry::Read##F, &cRegistry::Write##F, \
                    &cRegistry::Read##F##At, &cRegistry::Write##F##At>(Registry, __VA_ARGS__);                        \
    }

TEST_F(RegistryTest, FamiliesAreStoredAndReadBackInTheirForms) {
    CHECK_FAMILY(String, std::string, "Ток, \"A\\B\"", "other",
                 RawValue(TextType, "\xD2\xEE\xEA, \"A\\B\"\0"s))  // the platform adds the terminator
    CHECK_FAMILY(DWord, int32_t, -2, 7, RawValue(DWordType, "\xFE\xFF\xFF\xFF"))
    CHECK_FAMILY(Byte, uint8_t, 200, 7, RawValue(DWordType, "\xC8\0\0\0"s))
    CHECK_FAMILY(Int16, int16_t, -1, 7, RawValue(DWordType, "\xFF\xFF\0\0"s))
    CHECK_FAMILY(Bool, bool, true, false, RawValue(DWordType, "\1\0\0\0"s))
    CHECK_FAMILY(Float, float, 10.0f, 7.0f, RawValue(DWordType, "\0\0\x20\x41"s))
    CHECK_FAMILY(Double, double, -2.5, 7.0, RawValue(BinaryType, "\0\0\0\0\0\0\x04\xC0"s))
    CHECK_FAMILY(Currency, int64_t, -2, 7, RawValue(BinaryType, "\xFE\xFF\xFF\xFF\xFF\xFF\xFF\xFF"))

    RegistryBytes bytes = {9};
    EXPECT_FALSE(Registry.WriteBinary("a", {}));
    EXPECT_EQ(RegistryBytes{0}, Registry.BinaryValue("none"));
    EXPECT_FALSE(Registry.ReadBinary("none", bytes));
    EXPECT_TRUE(Registry.WriteBinary("bin", {0, 255, 10}));
    EXPECT_EQ(RawValue(BinaryType, "\0\xFF\n"s), LoadRaw(Stage, "bin"));

    std::string text = "mine";
    EXPECT_FALSE(Registry.ReadString("none", text, ""));
    EXPECT_EQ("mine", text) << "an empty fallback is none";
    EXPECT_TRUE(Registry.WriteString("empty", ""));
    EXPECT_EQ(RawValue(TextType, ""), LoadRaw(Stage, "empty"));
}

TEST_F(RegistryTest, ReadersTakeWhateverFits) {
    // Stored; then what is read as a text, as a number into 0x11223344, whether as eight bytes, and as any bytes.
    const std::tuple<RawValue, std::optional<std::string>, std::optional<int32_t>, bool, bool> cases[] = {
        {{TextType, "abcdefgh"}, "abcdefgh", {}, true, true},  // no terminator
        {{TextType, "ab\0cd\0"s}, "ab", {}, false, true},
        {{TextType, "ab"}, "ab", 0x11006261, false, true},  // the platform ends a text that has room
        {{7, "a\0bc\0\0"s}, "a", {}, false, true},
        {{BinaryType, ""}, "", 0x11223344, false, false},
        {{BinaryType, "\1\2"}, "\1\2", 0x11220201, false, true},
        {{BinaryType, "\1\2\3\4\5\6\7\x8\x9"}, "\1\2\3\4\5\6\7\x8\x9", {}, false, true},
        {{11, "\1\2\3\4\5\6\7\x8"}, "\1\2\3\4\5\6\7\x8", {}, true, true},
        {{0, "x"}, "x", 0x11223378, false, true},
    };
    for (const auto& [stored, asText, asNumber, asEightBytes, asBytes] : cases) {
        StoreRaw(Stage, "v", stored.first, stored.second);
        SCOPED_TRACE(std::to_string(stored.first) + ": " + stored.second);
        std::string text = "mine";
        EXPECT_EQ(asText.has_value(), Registry.ReadStringAt(CurrentUser, Stage, "v", text));
        EXPECT_EQ(asText.value_or("mine"), text);
        int32_t number = 0x11223344;
        EXPECT_EQ(asNumber.has_value(), Registry.ReadDWordAt(CurrentUser, Stage, "v", number));
        EXPECT_EQ(asNumber.value_or(0x11223344), number);
        EXPECT_EQ(asNumber ? 0 : 234, Registry.LastError());
        bool truth = false;
        EXPECT_EQ(asNumber.has_value(), Registry.ReadBoolAt(CurrentUser, Stage, "v", truth));
        EXPECT_EQ(!stored.second.empty() && asNumber.has_value(), truth);
        double real = 7;
        EXPECT_EQ(asEightBytes, Registry.ReadDouble("v", real, 8));
        EXPECT_EQ(!asEightBytes, real == 8);
        RegistryBytes bytes = {9};
        EXPECT_EQ(asBytes, Registry.ReadBinary("v", bytes));
        EXPECT_EQ(asBytes ? stored.second : "\x9", std::string(bytes.begin(), bytes.end()));
    }
}

TEST_F(RegistryTest, LocationGoesOnlyWhereAKeyIs) {
    const std::string path = Stage + "\\Новый\\b";
    cRegistry registry;
    // The root and path asked for, the error, those that hold afterwards.
    using Step = std::tuple<uint32_t, std::string, int32_t, uint32_t, std::string>;
    const Step steps[] = {{CurrentUser, "Software", 0, CurrentUser, "Software"},  // where it begins
                          {CurrentUser, path, 0, CurrentUser, path},              // made on the way
                          {CurrentUser, "\\bad", 161, CurrentUser, path},
                          {0x80000007, path, 6, CurrentUser, path},
                          {0x80000002, "", 0, 0x80000002, ""},
                          {0x80000002, std::string(300, 'x'), 234, 0x80000002, ""}};  // longer than the platform takes
    for (const auto& [root, keyPath, error, endRoot, endPath] : steps) {
        registry.SetRootKey(root);
        registry.SetKeyPath(keyPath);
        EXPECT_EQ(Step(root, keyPath, error, endRoot, endPath),
                  Step(root, keyPath, registry.LastError(), registry.RootKey(), registry.KeyPath()));
    }
    EXPECT_TRUE(registry.KeyExists(CurrentUser, Stage + "\\нОВЫЙ\\B\\"));
}

TEST_F(RegistryTest, KeysAndValuesComeAndGo) {
    const std::string a = Stage + "\\a", b = a + "\\b";
    for (const char* text : {"text", ""}) {
        EXPECT_TRUE(Registry.CreateKey(CurrentUser, b, text));
        EXPECT_EQ(RawValue(TextType, "text\0"s), LoadRaw(b, ""));
    }
    EXPECT_FALSE(Registry.DeleteKey(CurrentUser, a));
    EXPECT_EQ(5, Registry.LastError()) << "a key with subkeys stays";
    EXPECT_FALSE(Registry.DeleteKey(CurrentUser, ""));
    EXPECT_TRUE(Registry.DeleteValue(CurrentUser, b, ""));
    EXPECT_FALSE(Registry.DeleteValue(CurrentUser, b, ""));
    EXPECT_TRUE(Registry.DeleteKey(CurrentUser, b) && Registry.DeleteKey(CurrentUser, Stage + "\\A"));
    EXPECT_FALSE(Registry.DeleteKey(CurrentUser, a));
    EXPECT_EQ(2, Registry.LastError());
}

TEST_F(RegistryTest, OperationsAskForNoMoreRightsThanTheyNeed) {
    const std::string key = Stage + "\\k";
    for (const uint32_t denied : {0u, 1u, 2u, 4u, 8u, 0x20000u}) {
        for (const RegistryOperation& each : RegistryOperations(key)) {
            StoreRaw(key, "n", DWordType, each.Name == "ReadDouble"s ? "abcdefgh" : "abcd");
            StoreRaw(key + "\\sub", "", DWordType, "abcd");
            const bool allowed = (each.Rights & denied) == 0;
            const std::string& target = each.Name == "DeleteKey"s ? key + "\\sub" : key;
            DenyRights(target, denied);
            EXPECT_EQ(allowed, each.Works(Registry)) << each.Name << " without right " << denied;
            EXPECT_EQ(allowed ? 0 : 5, Registry.LastError()) << each.Name;
            if (!allowed || target == key) DenyRights(target, 0);
        }
    }
}

TEST_F(RegistryTest, ListingsBeginWithThePath) {
    using Names = std::vector<std::string>;
    Names names;
    EXPECT_EQ(0, Registry.EnumSubKeys(CurrentUser, Stage + "\\none", names));
    EXPECT_EQ(Names{Stage + "\\none"}, names);
    EXPECT_EQ(0, Registry.EnumValues(CurrentUser, Stage, names));
    EXPECT_EQ(Names{Stage}, names);
    for (const char* name : {"", "A \"quoted\" one", "b", "\xDF\xED"}) {
        StoreRaw(Stage, name, TextType, "abc");
        if (*name != '\0') StoreRaw(Stage + "\\" + name, "", TextType, "");
    }
    EXPECT_EQ(3, Registry.EnumSubKeys(CurrentUser, Stage, names));
    EXPECT_EQ((std::vector<std::string>{Stage, "A \"quoted\" one", "b", "Ян"}), names);
    EXPECT_EQ(4, Registry.EnumValues(CurrentUser, Stage, names));
    EXPECT_EQ((std::vector<std::string>{Stage, "", "A \"quoted\" one", "b", "Ян"}), names);
    StoreRaw(Stage + "\\b\\sub", "", TextType, "");
    names = {"", Stage + "\\b"};
    EXPECT_EQ(1, Registry.EnumSubKeys(CurrentUser, names[1], names)) << "the path may stand in the list";
    EXPECT_EQ((std::vector<std::string>{Stage + "\\b", "sub"}), names);
    EXPECT_GT(Registry.EnumSubKeys(CurrentUser, "", names), 0) << "the root itself";
    EXPECT_EQ("", names[0]);
}

TEST_F(RegistryTest, AnyValueIsFoundAndExported) {
    const std::tuple<RawValue, RegistryValue, std::string> forms[] = {
        // stored, found, exported
        {{TextType, "a\\b \"c\"\0"s}, "a\\b \"c\"", "\"a\\\\b \"c\"\""},
        {{TextType, " \xD2\xEE\xEA  \0"s}, " Ток  ", "\"Ток\""},
        {{TextType, "abc"}, "ab", "\"abc\""},  // no terminator
        {{2, ""}, "", "\"\""},
        {{7, "a\0bc\0\0"s}, "a\0bc\0"s, "\"a\""},
        {{BinaryType, "\x0A\xFF"}, RegistryBytes{10, 255}, "hex:0a,ff"},
        {{DWordType, "\xFE\xFF\xFF\xFF"}, -2, "dword:fffffffe"},
        {{DWordType, "\1\2"}, 0x201, "dword:00000201"},
        {{DWordType, "\1\2\3\4\5"}, 0, "dword:00000000"},
        {{5, "\1\2\3\4"}, 0x04030201, "dword:04030201"},
        {{11, "\1\2"}, {}, "hex(b):01,02"},
        {{0x1234, ""}, {}, "hex(1234):"},
    };
    for (const auto& [stored, any, exported] : forms) {
        StoreRaw(Stage, "Va\xEB", stored.first, stored.second);
        SCOPED_TRACE(exported);
        RegistryValue value;
        EXPECT_EQ(stored.first, Registry.QueryValue(CurrentUser, Stage, "Vaл", value));
        EXPECT_EQ(any, value);
        EXPECT_EQ(0u, Registry.QueryValue(CurrentUser, Stage, "vaл", value)) << "found in another case";
        EXPECT_EQ(0u, Registry.QueryValue(CurrentUser, Stage, "Va", value)) << "found by its beginning";
        EXPECT_EQ(any, value);
        EXPECT_EQ("\r\n[HKEY_CURRENT_USER\\" + Stage + "]\r\n\"Vaл\"=" + exported + "\r\n",
                  Registry.ExportKey(CurrentUser, Stage, false));
    }
}

TEST_F(RegistryTest, ExportGoesDepthFirst) {
    StoreRaw(Stage, "", TextType, "x\0"s);
    StoreRaw(Stage, "q\"q", DWordType, "\1\0\0\0"s);
    StoreRaw(Stage + "\\a\\c", "", DWordType, "\1\0\0\0"s);
    StoreRaw(Stage + "\\b", "", BinaryType, "\1");
    const std::string head = "\r\n[HKEY_CURRENT_USER\\" + Stage;
    const std::string own = head + "]\r\n@=\"x\"\r\n\"q\"q\"=dword:00000001\r\n";
    EXPECT_EQ(own, Registry.ExportKey(CurrentUser, Stage, false));
    EXPECT_EQ(own + head + "\\a]\r\n" + head + "\\a\\c]\r\n@=dword:00000001\r\n" + head + "\\b]\r\n@=hex:01\r\n",
              Registry.ExportKey(CurrentUser, Stage, true));
    EXPECT_EQ("", Registry.ExportKey(CurrentUser, Stage + "\\none", true));
    EXPECT_TRUE(Registry.ExportKey(CurrentUser, "", false).starts_with("\r\n[HKEY_CURRENT_USER]\r\n"));
}

// In code page 932 the bytes 83 5C are one character; in 1251 they are a letter and a backslash.
TEST_F(RegistryTest, CharactersOfTwoBytesStayWhole) {
    StoreRaw(Stage, "v", TextType, "\x83\\\0"s);
    const bool one = platform::FromAnsi("\x83\\") == "ソ";
    EXPECT_EQ("\r\n[HKEY_CURRENT_USER\\" + Stage + "]\r\n\"v\"=\"" + (one ? "ソ" : "ѓ\\\\") + "\"\r\n",
              Registry.ExportKey(CurrentUser, Stage, false));
}

TEST_F(RegistryTest, ErrorTextsAreThePlatformsWithoutTheirEnd) {
    Registry.KeyExists(CurrentUser, Stage + "\\none");
    const std::string whole = cRegistry::SystemErrorText(2, false), cut = Registry.LastErrorText();
    ASSERT_GT(cut.size(), 4u);
    EXPECT_TRUE(whole == cut + "." || whole == cut + "。") << whole << " / " << cut;
    EXPECT_EQ(whole.substr(0, whole.find('.')), cRegistry::SystemErrorText(2, true));
    EXPECT_EQ("", cRegistry::SystemErrorText(123456789, false));
    EXPECT_EQ("HKEY_DYN_DATA", cRegistry::RootKeyName(0x80000006));
    EXPECT_EQ("", cRegistry::RootKeyName(0x80000007));
}

// Templates with inserts.
TEST(FormatText, FollowsThePlatformsRules) {
    // Nothing to fill in, an argument's own percent sign, an empty result, escapes, line ends, widths and precisions.
    const std::pair<std::string, std::string> cases[] = {
        {"no insert\n", "no insert\n"},
        {"%5%2%1", "fiveдваLTR27"},
        {"%4", "f%1r"},
        {"%3", "3"},
        {"a%%b%%", "a%b%"},
        {"a%0%6", "a"},
        {"%1%nb%tc%rd", "LTR27\r\nb\tc\rd"},
        {"% %.%!%A%\"", " .!A\""},
        {"%1\na\r\nb\rc", "LTR27\r\na\r\nb\r\nc"},
        {"%\r\n|", "\r\r\n|"},
        {"%1!s!|%2!s!s!", "LTR27|дваs!"},
        {"%1!8s!|%1!-8s!|%1!.2s!|%1!5.3s!|", "   LTR27|LTR27   |LT|  LTR|"},
        {"%1 !s!", "LTR27 !s!"},
        {"%1!1.s!|%1!.0s!", " |"}};
    // Refused by the platform, or before it is asked: then the template without its percent signs.
    for (const char* refused :
         {"100%", "%6", "%10%", "%1!s", "%1!*s!", "%1!ls!%1!S!", "%1!99s!", "%1!999999999999s!"}) {
        std::string bare = refused;
        std::erase(bare, '%');
        EXPECT_EQ(bare, FormatText(refused, "LTR27", "два", "", "f%1r", "five"));
    }
    for (const auto& [pattern, expected] : cases) {
        EXPECT_EQ(expected, FormatText(pattern, "LTR27", "два", "", "f%1r", "five")) << pattern;
    }
    // Room is for the template and twice the arguments, the result's terminator included.
    EXPECT_EQ("aaaaaaaaaa", FormatText("%1%1%1%1%1%1%1%1%1%1", "a", "", "", "", ""));
    EXPECT_EQ(std::string(29, ' ') + "a", FormatText("%1!30s!", "a", "xxxxxxx", "", "", ""));
    EXPECT_EQ("1!31s!", FormatText("%1!31s!", "a", "xxxxxxx", "", "", ""));
    // Beyond what the platform's buffers hold.
    const std::string filler(33000, 'x');
    EXPECT_EQ("1" + filler, FormatText("%1" + filler, "a", "", "", "", ""));
    EXPECT_EQ("", ResourceText(12345, "a")) << "there is none";
}

}  // namespace
}  // namespace corvane::test
