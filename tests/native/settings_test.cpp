// What a driver object starts with and leaves behind, on the registry in memory.
#include <bit>
#include <limits>

#include "driver/driver_object.h"
#include "driver/lifecycle.h"
#include "standins/registry_hooks.h"
#include "tests/registry/registry_operations.h"

namespace corvane::test {
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

class Settings : public testing::Test {
protected:
    void SetUp() override { platform::ClearRegistry(); }
    void TearDown() override { platform::ClearRegistry(); }
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

}  // namespace
}  // namespace corvane::test
