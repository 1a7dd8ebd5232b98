// On the registry in memory: what a driver object starts with and leaves behind, and cRegistry when the registry fails,
// lies and changes between two calls.
#include <bit>
#include <limits>

#include "driver/driver_object.h"
#include "driver/lifecycle.h"
#include "standins/registry_hooks.h"
#include "tests/registry/registry_stage.h"

namespace corvane::test {

void DenyRights(const std::string& path, uint32_t rights) {
    platform::DenyRights(CurrentUser, path, rights);
}

namespace {

using namespace std::string_literals;
using platform::BinaryType;
using platform::DWordType;
using platform::TextType;

const std::string SettingsKey = "Software\\Vrex\\ADC\\L-Card\\LTR27";

template <class Value>
std::string BytesOf(Value value) {
    return {reinterpret_cast<const char*>(&value), sizeof value};
}

struct Settings : testing::Test {
    Settings() { platform::ClearRegistry(); }
};

void Store(const std::string& name, uint32_t type, const std::string& data) {
    platform::StoreValue(CurrentUser, SettingsKey, name, type, data);
}

// The stored rate as it stands in the state, before anything brings it to a reachable one, and the mode.
std::pair<float, int16_t> Loaded() {
    DriverState& state = AttachObject();
    const std::pair<float, int16_t> loaded = {state.Input.Rate, state.Crate.MarkSTARTMode};
    DetachObject(state);
    return loaded;
}

TEST_F(Settings, AreLoadedOnlyWhenUsable) {
    using Float = std::numeric_limits<float>;
    // The last three: short of a byte, which makes a tiny number; a text whose bytes make a number; another type.
    const std::tuple<uint32_t, std::string, float> rates[] = {
        {DWordType, BytesOf(400.0f), 400},
        {DWordType, BytesOf(1000.0f), 1000},
        {DWordType, BytesOf(1000.0001f), 10},
        {DWordType, BytesOf(0.0f), 10},
        {DWordType, BytesOf(-5.0f), 10},
        {DWordType, BytesOf(Float::quiet_NaN()), 10},
        {DWordType, BytesOf(Float::infinity()), 10},
        {DWordType, BytesOf(Float::denorm_min()), Float::denorm_min()},
        {DWordType, "\xFF\xFF\xFF", std::bit_cast<float>(0x00FFFFFF)},
        {TextType, "12AC", std::bit_cast<float>(0x43413231)},
        {BinaryType, BytesOf(400.0f), 400}};
    for (const auto& [type, data, rate] : rates) {
        platform::ClearRegistry();
        Store("Rate", type, data);
        EXPECT_EQ(rate, Loaded().first) << testing::PrintToString(data);
    }
    const std::pair<int32_t, int16_t> modes[] = {{0, 0}, {7, 7}, {8, 0}, {-1, 0}, {0x10003, 3}};
    for (const auto& [stored, mode] : modes) {
        platform::ClearRegistry();
        Store("MarkSTARTMode", DWordType, BytesOf(stored));
        EXPECT_EQ(mode, Loaded().second) << stored;
        EXPECT_EQ(RawValue(DWordType, BytesOf<int32_t>(mode)), LoadRaw(SettingsKey, "MarkSTARTMode")) << "repaired";
    }
}

TEST_F(Settings, AreSavedByTheLastObject) {
    auto first = std::make_unique<DriverObject>();
    EXPECT_EQ(RawValue(TextType, "LTR27\0"s), LoadRaw(SettingsKey, ""));
    auto second = std::make_unique<DriverObject>();
    second->SetRate(400);
    second.reset();
    EXPECT_EQ(std::nullopt, LoadRaw(SettingsKey, "Rate"));
    first.reset();
    EXPECT_EQ(RawValue(DWordType, BytesOf(1000.0f / 3)), LoadRaw(SettingsKey, "Rate"));
    EXPECT_EQ(RawValue(DWordType, "\0\0\0\0"s), LoadRaw(SettingsKey, "MarkSTARTMode"));
    std::thread([] { EXPECT_FLOAT_EQ(1000.0f / 3, DriverObject().Rate()); }).join();
    EXPECT_EQ(0, platform::OpenRegistryKeys());

    const float tiny = std::numeric_limits<float>::denorm_min();
    for (const auto& [rate, kept] : {std::pair{2000.0f, 1000.0f / 3}, {tiny, tiny}}) {  // the first can't be stored
        DriverState& state = AttachObject();
        state.Input.Rate = rate;
        state.Crate.MarkSTARTMode = 5;
        DetachObject(state);
        EXPECT_EQ(std::pair(kept, int16_t{5}), Loaded());
    }
}

TEST_F(Settings, DefaultValueIsTheNameAndWrittenOnlyWhenItDiffers) {
    Store("", TextType, "LTR27");
    EXPECT_EQ(10, Loaded().first);
    EXPECT_EQ(RawValue(TextType, "LTR27"), LoadRaw(SettingsKey, "")) << "rewritten, with a terminator now";
    Store("", TextType, "ltr27\0"s);
    Loaded();
    EXPECT_EQ(RawValue(TextType, "LTR27\0"s), LoadRaw(SettingsKey, ""));
}

TEST_F(Settings, WithoutAKeyNothingIsReadOrWrittenElsewhere) {
    platform::StoreValue(CurrentUser, "Software", "Rate", DWordType, BytesOf(500.0f));
    platform::StoreValue(CurrentUser, "Software", "MarkSTARTMode", DWordType, BytesOf(3));
    platform::DenyRights(CurrentUser, "Software", platform::CreateSubKeyRight);
    {
        DriverObject driver;
        EXPECT_FLOAT_EQ(10, driver.Rate());
        driver.SetRate(1000);
    }
    EXPECT_EQ(RawValue(DWordType, BytesOf(500.0f)), LoadRaw("Software", "Rate"));
    EXPECT_EQ(std::nullopt, LoadRaw("Software", ""));

    platform::ClearRegistry();
    Store("Rate", DWordType, BytesOf(500.0f));  // in a key that may only be read
    platform::DenyRights(CurrentUser, SettingsKey, platform::SetValueRight);
    EXPECT_EQ(500, Loaded().first);
}

class HostileRegistry : public testing::Test {
protected:
    void SetUp() override {
        platform::ClearRegistry();
        platform::StoreValue(CurrentUser, Stage, "n", BinaryType, "abcdefgh");
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
            if (call == 3)
                platform::StoreValue(CurrentUser, Stage, "n", BinaryType, after);  // 1 opens, 2 learns the length
            return 0;
        };
        std::string text = "mine";
        platform::InterceptRegistry(change);
        EXPECT_TRUE(Registry.ReadStringAt(CurrentUser, Stage, "n", text));
        EXPECT_EQ(readText, text);
        platform::StoreValue(CurrentUser, Stage, "n", BinaryType, "abcdefgh");
        RegistryBytes bytes = {'m', 'i', 'n', 'e'};
        platform::InterceptRegistry(change);
        EXPECT_EQ(error == 0, Registry.ReadBinary("n", bytes));
        EXPECT_EQ(readBytes, std::string(bytes.begin(), bytes.end()));
        EXPECT_EQ(error, Registry.LastError());
        platform::StoreValue(CurrentUser, Stage, "n", BinaryType, "abcdefgh");
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
