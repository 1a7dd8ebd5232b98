// Channels and ranges, and the ring that the samples wait in.
#include <gtest/gtest.h>

#include <sys/resource.h>
#include <unistd.h>

#include <fstream>
#include <limits>
#include <numeric>
#include <tuple>
#include <vector>

#include "driver/model/channel_model.h"
#include "driver/model/data_ring.h"
#include "driver/model/gap_list.h"
#include "driver/model/input_state.h"

namespace corvane {
namespace {

TEST(ChannelModel, DefaultsNameSixteenChannelsOnEightRanges) {
    DeviceInfo device;
    InitDefaults(device);
    EXPECT_TRUE(device.ChannelsCount == 16 && device.RangesCount == 8 && device.Ranges.back() == "M8");
    for (int16_t channel = 0; channel < 16; channel++) {
        const std::string name = "M" + std::to_string(channel / 2 + 1) + "-" + std::to_string(channel % 2 + 1);
        EXPECT_EQ(device.ChannelNames[static_cast<size_t>(channel)], name);
        EXPECT_EQ(device.RangeOf(channel), static_cast<size_t>(channel / 2));
        EXPECT_EQ(device.UnitScales[device.RangeOf(channel)], 1638.4f);
    }
}

TEST(ChannelModel, RangesFollowTheMezzanines) {
    const float nan = std::numeric_limits<float>::quiet_NaN();
    // The mezzanine, its range, unit, scale and offset.
    const std::tuple<MezzanineInfo, std::string, std::string, float, float> cases[] = {
        {{"U10", "", "", "В", 10, -10}, "±10 В", "V", 1638.4f, 0},
        {{"I20", "", "", "мА", 20, 0}, "0…20 мА", "mA", 1638.4f, 10},
        {{"U10", "", "", "V", 10, -5}, "-5…+10 V", "V", 32768 / 15.0f, 2.5f},
        {{"R", "", "", "Ом", 250, 0.5f}, "0.5…250 Ом", "Ohm", 32768 / 249.5f, 125.25f},
        {{"T", "", "", "°C", -5, -50}, "-50…-5 °C", "°C", 32768 / 45.0f, -27.5f},
        {{"Z", "", "", "В", 0, -0.0f}, "Z", "V", 1638.4f, 0},
        {{"N", "", "", "V", nan, 0}, "N", "V", 1638.4f, 0},
        {{"S", "", "", "V", 1e-38f, 0}, "S", "V", 1638.4f, 0},  // an infinite scale
        {{"E", "", "", "V", 1e7f, -2.5e-5f}, "-2.5e-05…+1e+07 V", "V", 0.0032768f, 5e6f},
        {{"O", "", "", "V", 3.4e38f, 3.3e38f}, "O", "V", 1638.4f, 0},  // an infinite offset
        {{"", "", "", "", 1, -1}, "Empty", "", 1638.4f, 0},
    };
    for (const auto& [mezzanine, rangeName, unit, scale, offset] : cases) {
        std::vector<ModuleRecord> modules(2);
        modules[0].Slot = 3;
        modules[1].Slot = 12;
        modules[1].Mezzanines[2] = mezzanine;
        DeviceInfo device;
        BuildChannelModel(device, modules);
        ASSERT_EQ(device.ChannelsCount, 32);
        const size_t range = device.RangeOf(21);
        ASSERT_EQ(range, 10u);
        EXPECT_EQ(std::pair(device.Ranges[range], device.UnitNames[range]), std::pair(rangeName, unit));
        EXPECT_FLOAT_EQ(device.UnitScales[range], scale);
        EXPECT_FLOAT_EQ(device.UnitOffsets[range], offset);
        EXPECT_EQ(device.ChannelNames[21], mezzanine.Name.empty() ? "Empty" : "12_3-2_" + mezzanine.Name);
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

TEST(GapList, JoinsNeighboursAndForgetsNothingWhenFull) {
    const auto cut = GapReason::CutShort, silent = GapReason::NothingCame;
    GapList list;
    list.Reserve();
    // Two modules mixed: only what touches, of one module and one reason, is one gap.
    for (const Gap& gap : {Gap{0, 0, 4, silent}, Gap{1, 0, 4, silent}, Gap{0, 4, 4, silent}, Gap{1, 4, 2, cut},
                           Gap{0, 9, 1, silent}, Gap{1, 6, 1, cut}}) {
        list.Add(gap);
    }
    const std::vector<Gap> joined = {{0, 0, 8, silent}, {1, 0, 4, silent}, {1, 4, 3, cut}, {0, 9, 1, silent}};
    EXPECT_EQ(list.Gaps(), joined);

    // Full with gaps of module 0; module 1's first one is still listed, later ones of each lengthen its last.
    list.Clear();
    const auto capacity = static_cast<int64_t>(GapList::Capacity);
    for (int64_t i = 0; i < capacity; i++) list.Add({0, 2 * i, 1, cut});
    for (const int64_t later : {1, 3}) {
        for (const int32_t module : {0, 1}) list.Add({module, 2 * capacity + later, 1, silent});
    }
    const std::vector<Gap> gaps = list.Gaps();
    ASSERT_EQ(gaps.size(), GapList::Capacity + 1);
    EXPECT_EQ(gaps[GapList::Capacity - 2], (Gap{0, 2 * capacity - 4, 1, cut}));
    EXPECT_EQ(gaps[GapList::Capacity - 1], (Gap{0, 2 * capacity - 2, 6, GapReason::Various}));
    EXPECT_EQ(gaps[GapList::Capacity], (Gap{1, 2 * capacity + 1, 3, GapReason::Various}));
}

TEST(InputState, SizesAreToldByTheRules) {
    const int32_t highest = std::numeric_limits<int32_t>::max();
    // Requested samples and channels, kadrs and samples told, kadrs of a block, kadrs told at the start.
    const std::tuple<int32_t, size_t, int32_t, int32_t, int32_t, int32_t> cases[] = {
        {32768, 5, 8192, 40960, 64, 32768},
        {500, 1, 32768, 32768, 1, 32768},
        {1500, 1, 1500, 1500, 64, 1536},
        {1027, 2, 514, 1028, 8, 1032},
        {highest, 32, 67108864, highest, 64, highest}};
    for (const auto& [requested, channels, kadrs, samples, blockKadrs, startKadrs] : cases) {
        InputState input;
        input.ChTable.resize(channels);
        input.RequestedSize = requested;
        EXPECT_EQ(SetInputSize(input, true, 0), kadrs);
        EXPECT_EQ(input.InputSizeData, samples);
        EXPECT_EQ(PrepareInputBuffer(input, blockKadrs), requested != highest);
        EXPECT_EQ(input.InputSizeKadrs, startKadrs);
    }
}

// Leaves this process room for another gigabyte, no more.
class LittleMemory {
public:
    LittleMemory() {
        size_t pages = 0;
        std::ifstream("/proc/self/statm") >> pages;
        getrlimit(RLIMIT_AS, &Before_);
        const rlimit limit = {pages * static_cast<size_t>(getpagesize()) + 1'000'000'000, Before_.rlim_max};
        setrlimit(RLIMIT_AS, &limit);
    }
    ~LittleMemory() { setrlimit(RLIMIT_AS, &Before_); }
    LittleMemory(const LittleMemory&) = delete;
    LittleMemory& operator=(const LittleMemory&) = delete;

private:
    rlimit Before_ = {};
};

TEST(DataRing, NeedsNoRoomForTwoUnlessKadrsAreUnread) {
    constexpr int32_t Kadrs = 12'000'000;  // of 32 channels: 768 MB
    const LittleMemory limit;
    DataRing ring;
    ASSERT_TRUE(ring.ResetInputBuffer(32, Kadrs));
    ASSERT_TRUE(ring.ResetInputBuffer(31, Kadrs)) << "the first one was empty, and had to go";
    *ring.BlockToWrite() = 4711;
    ring.Commit(1);
    EXPECT_FALSE(ring.ResetInputBuffer(32, Kadrs));
    EXPECT_EQ(std::tuple(ring.Channels(), ring.Length(), ring.CountUnreadKadrs()), std::tuple(31, Kadrs, 1));
    std::vector<int16_t> kadr(31);
    EXPECT_EQ(ring.Read(kadr.data(), 2), 1);
    EXPECT_EQ(kadr[0], 4711);
    EXPECT_FALSE(ring.ResetInputBuffer(31, 2 * Kadrs)) << "more than there is";
    EXPECT_EQ(std::tuple(ring.Channels(), ring.Length()), std::tuple(0, 0));
    for (const int16_t first : {int16_t{7}, int16_t{8}}) {  // begins anew, though kadrs are left
        ASSERT_TRUE(ring.ResetInputBuffer(1, 4));
        EXPECT_EQ(ring.KadrsRecorded(), 0);
        *ring.BlockToWrite() = first;
        ring.Commit(3);
        EXPECT_EQ(ring.Read(kadr.data(), 2), 2);
        EXPECT_EQ(std::pair(kadr[0], kadr[1]), std::pair(first, int16_t{0}));
        EXPECT_TRUE(ring.KadrsRead() == 2 && ring.KadrsRecorded() == 3);
    }
}

TEST(InputState, GetDataTakesWholeKadrsOfTheRecordedShape) {
    InputState input;
    input.ChTable = {2, 5};
    ASSERT_TRUE(PrepareInputBuffer(input, 64));
    std::iota(input.Ring.BlockToWrite(), input.Ring.BlockToWrite() + 128, int16_t{0});
    input.Ring.Commit(64);
    const int32_t highest = std::numeric_limits<int32_t>::max();
    for (const auto& [channels, kadrs] : {std::pair{0, 4}, {1, 0}, {-1, -1}, {32, highest}, {2, highest / 2 + 1}}) {
        EXPECT_FALSE(input.Ring.ResetInputBuffer(channels, kadrs)) << "impossible, and costs no data";
    }
    input.ChTable = {1, 2, 3, 4, 5};  // chosen while kadrs are unread
    input.RequestedSize = 2000000000;
    SetInputSize(input, true, 0);
    // Asked for, kadrs, remaining.
    const std::tuple<int32_t, int32_t, int32_t> reads[] = {
        {-100, 0, 128}, {1, 0, 128}, {7, 3, 122}, {1000, 61, 0}, {1000, 0, 0}};
    std::vector<int16_t> out(1000, -1);
    int16_t expected = 0;
    for (const auto& [asked, kadrs, left] : reads) {
        int32_t count = asked, remaining = -1;
        EXPECT_EQ(GetData(input, out.data(), count, remaining), kadrs);
        EXPECT_EQ(count, 2 * kadrs);
        EXPECT_EQ(remaining, left);
        for (int32_t i = 0; i < count; i++) EXPECT_EQ(out[static_cast<size_t>(i)], expected++);
    }
}

}  // namespace
}  // namespace corvane
