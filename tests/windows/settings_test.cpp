// The settings as the component leaves them in the user's registry, and what it makes of those it finds there.
#include <cstring>
#include <limits>
#include <optional>

#include "tests/windows/recording_host.h"

namespace corvane::test {
namespace {

constexpr wchar_t SettingsKey[] = L"Software\\Vrex\\ADC\\L-Card\\LTR27";

class SettingsOfUser : public ::testing::Test {
protected:
    static void SetUpTestSuite() { ASSERT_EQ(S_OK, LoadedComponent().Call("DllRegisterServer")); }
    void SetUp() override {
        ASSERT_EQ(0, LtrSim_Configure(SequenceScenario(1).c_str())) << LtrSim_Message();
        RegDeleteKeyW(HKEY_CURRENT_USER, SettingsKey);
    }
    void TearDown() override { RegDeleteKeyW(HKEY_CURRENT_USER, SettingsKey); }

    Apartment Apartment_;
};

void Store(const wchar_t* name, DWORD type, const void* data, DWORD size) {
    HKEY key = nullptr;
    ASSERT_EQ(ERROR_SUCCESS, RegCreateKeyW(HKEY_CURRENT_USER, SettingsKey, &key));
    RegSetValueExW(key, name, 0, type, static_cast<const BYTE*>(data), size);
    RegCloseKey(key);
}

std::optional<DWORD> StoredNumber(const wchar_t* name) {
    HKEY key = nullptr;
    if (RegOpenKeyExW(HKEY_CURRENT_USER, SettingsKey, 0, KEY_QUERY_VALUE, &key) != ERROR_SUCCESS) return std::nullopt;
    DWORD type = 0, number = 0, size = sizeof number;
    const LONG result = RegQueryValueExW(key, name, nullptr, &type, reinterpret_cast<BYTE*>(&number), &size);
    RegCloseKey(key);
    if (result != ERROR_SUCCESS || type != REG_DWORD || size != sizeof number) return std::nullopt;
    return number;
}

DWORD Bits(float rate) {
    DWORD bits = 0;
    std::memcpy(&bits, &rate, sizeof bits);
    return bits;
}

// The rate of a new object once it has opened the device.
float OpenedRate() {
    const ComPtr<IADC3> driver = CreateDriver();
    if (driver == nullptr || !True(driver.Get(), &IADC3::Test)) return -1;
    return Read(driver.Get(), &IADC3::get_Rate);
}

TEST_F(SettingsOfUser, OutliveTheLastObject) {
    ComPtr<IADC3> driver = CreateDriver();
    ASSERT_NE(nullptr, driver);
    EXPECT_FLOAT_EQ(10, Read(driver.Get(), &IADC3::get_Rate));
    EXPECT_EQ(S_OK, driver->put_Rate(400));
    EXPECT_EQ(std::nullopt, StoredNumber(L"Rate")) << "an object is left";
    driver.Reset();
    EXPECT_EQ(Bits(1000.0f / 3), StoredNumber(L"Rate"));
    EXPECT_EQ(0u, StoredNumber(L"MarkSTARTMode"));
    wchar_t name[16] = {};
    LONG size = sizeof name;
    EXPECT_EQ(ERROR_SUCCESS, RegQueryValueW(HKEY_CURRENT_USER, SettingsKey, name, &size));
    EXPECT_STREQ(L"LTR27", name);
    driver = CreateDriver();
    EXPECT_FLOAT_EQ(1000.0f / 3, Read(driver.Get(), &IADC3::get_Rate));
}

TEST_F(SettingsOfUser, AreIgnoredOrRepairedWhenUnusable) {
    constexpr float NaN = std::numeric_limits<float>::quiet_NaN(), Infinity = std::numeric_limits<float>::infinity();
    const std::pair<float, float> rates[] = {{400, 1000.0f / 3}, {1, 4},    {1500, 10},     {0, 10},
                                             {-5, 10},           {NaN, 10}, {Infinity, 10}, {1e-40f, 10}};
    for (const auto& [stored, opened] : rates) {
        Store(L"Rate", REG_DWORD, &stored, sizeof stored);
        EXPECT_FLOAT_EQ(opened, OpenedRate()) << stored;
    }
    const wchar_t text[] = {L'2', L'C'};  // four bytes
    Store(L"Rate", REG_BINARY, text, sizeof text);
    EXPECT_FLOAT_EQ(10, OpenedRate());
    EXPECT_EQ(Bits(10), StoredNumber(L"Rate")) << "and written anew";

    const std::pair<DWORD, DWORD> modes[] = {{7, 7}, {8, 0}, {9, 0}, {0xFFFF, 0}, {0xFFFFFFFF, 0}};
    for (const auto& [stored, repaired] : modes) {
        Store(L"MarkSTARTMode", REG_DWORD, &stored, sizeof stored);
        EXPECT_NE(nullptr, CreateDriver());
        EXPECT_EQ(repaired, StoredNumber(L"MarkSTARTMode")) << stored;
    }
}

}  // namespace
}  // namespace corvane::test
