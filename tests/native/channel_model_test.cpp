// Channels and ranges.
#include "driver/model/channel_model.h"

#include <gtest/gtest.h>

#include <tuple>

namespace corvane {
namespace {

TEST(ChannelModel, DefaultsNameSixteenChannelsOnEightRanges) {
    DeviceInfo device;
    InitDefaults(device);
    EXPECT_EQ(device.ChannelsCount, 16);
    EXPECT_EQ(device.RangesCount, 8);
    EXPECT_EQ(device.Ranges.back(), "M8");
    for (int16_t channel = 0; channel < 16; channel++) {
        const std::string name = "M" + std::to_string(channel / 2 + 1) + "-" + std::to_string(channel % 2 + 1);
        EXPECT_EQ(device.ChannelNames[static_cast<size_t>(channel)], name);
        EXPECT_EQ(device.RangeOf(channel), static_cast<size_t>(channel / 2));
        EXPECT_EQ(device.UnitScales[device.RangeOf(channel)], 1638.4f);
    }
}

TEST(ChannelModel, RangesFollowTheMezzanines) {
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const struct {
        MezzanineInfo Mezzanine;
        const char* Range;
        const char* Unit;
        float Scale, Offset;
    } cases[] = {
        {{"U10", "", "", "В", 10, -10}, "±10 В", "V", 1638.4f, 0},
        {{"I20", "", "", "мА", 20, 0}, "0…20 мА", "mA", 1638.4f, 10},
        {{"U10", "", "", "V", 10, -5}, "-5…+10 V", "V", 32768 / 15.0f, 2.5f},
        {{"R", "", "", "Ом", 250, 0.5f}, "0.5…250 Ом", "Ohm", 32768 / 249.5f, 125.25f},
        {{"T", "", "", "°C", -5, -50}, "-50…-5 °C", "°C", 32768 / 45.0f, -27.5f},
        {{"Z", "", "", "В", 0, -0.0f}, "Z", "V", 1638.4f, 0},
        {{"N", "", "", "V", nan, 0}, "N", "V", 1638.4f, 0},
        {{"S", "", "", "V", 1e-38f, 0}, "S", "V", 1638.4f, 0},         // an infinite scale
        {{"O", "", "", "V", 3.4e38f, 3.3e38f}, "O", "V", 1638.4f, 0},  // an infinite offset
        {{"", "", "", "", 1, -1}, "Empty", "", 1638.4f, 0},
    };
    for (const auto& expected : cases) {
        std::vector<ModuleRecord> modules(2);
        modules[0].Slot = 3;
        modules[1].Slot = 12;
        modules[1].Mezzanines[2] = expected.Mezzanine;
        DeviceInfo device;
        BuildChannelModel(device, modules);
        ASSERT_EQ(device.ChannelsCount, 32);
        const size_t range = device.RangeOf(21);
        ASSERT_EQ(range, 10u);
        EXPECT_EQ(device.Ranges[range], expected.Range);
        EXPECT_EQ(device.UnitNames[range], expected.Unit);
        EXPECT_FLOAT_EQ(device.UnitScales[range], expected.Scale);
        EXPECT_FLOAT_EQ(device.UnitOffsets[range], expected.Offset);
        const std::string name = expected.Mezzanine.Name;
        EXPECT_EQ(device.ChannelNames[20], name.empty() ? "Empty" : "12_3-1_" + name);
        EXPECT_EQ(device.ChannelNames[21], name.empty() ? "Empty" : "12_3-2_" + name);
        EXPECT_EQ(device.ChannelNames[5], "Empty");
    }
}

TEST(ChannelModel, TablesAreBroughtIntoOrder) {
    using Table = std::vector<int16_t>;
    // Given, channels, expected.
    const std::tuple<Table, int16_t, Table> cases[] = {
        {{15, 3, 3, 99, -1}, 16, {3, 15}}, {{}, 16, {0}}, {{-1, 16, -32768, 32767}, 16, {0}}, {{7, 7}, 0, {7, 7}}};
    for (auto [table, channels, expected] : cases) {
        NormalizeChannelTable(table, channels);
        EXPECT_EQ(table, expected);
    }
}

}  // namespace
}  // namespace corvane
