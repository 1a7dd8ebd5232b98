#include "driver/model/data_ring.h"

#include <gtest/gtest.h>

#include <limits>
#include <random>
#include <thread>
#include <vector>

#include "driver/model/input_state.h"

namespace corvane {
namespace {

// Writes blocks of `kadrs` kadrs whose samples count up from `next`.
void Write(DataRing& ring, int32_t kadrs, int16_t& next) {
    ASSERT_TRUE(ring.Room(kadrs));
    int16_t* place = ring.BlockToWrite();
    for (int32_t i = 0; i < kadrs * ring.Channels(); i++) place[i] = next++;
    ring.Commit(kadrs);
}

TEST(DataRing, ReadsAcrossTheEnd) {
    DataRing ring;
    ASSERT_TRUE(ring.ResetInputBuffer(2, 8));
    int16_t next = 1;
    Write(ring, 8, next);
    EXPECT_FALSE(ring.Room(1));
    std::vector<int16_t> out(100);
    EXPECT_EQ(ring.Read(out.data(), 6), 6);
    Write(ring, 4, next);
    EXPECT_EQ(ring.CountUnreadKadrs(), 6);
    EXPECT_EQ(ring.Read(out.data(), 3), 3);
    for (size_t i = 0; i < 6; i++) EXPECT_EQ(out[i], static_cast<int16_t>(13 + i));
    EXPECT_EQ(ring.CountUnreadKadrs(), 3);
    EXPECT_EQ(ring.Read(out.data(), 100), 3);
    EXPECT_EQ(ring.CountUnreadKadrs(), 0);
    EXPECT_EQ(ring.Read(out.data(), -5), 0);
}

TEST(DataRing, ImpossibleSizesAreRefusedAndCostNoData) {
    DataRing ring;
    ASSERT_TRUE(ring.ResetInputBuffer(1, 4));
    int16_t next = 7;
    Write(ring, 4, next);
    const int32_t highest = std::numeric_limits<int32_t>::max();
    for (const auto& [channels, kadrs] : {std::pair{0, 4}, {1, 0}, {-1, -1}, {32, highest}, {2, highest / 2 + 1}}) {
        EXPECT_FALSE(ring.ResetInputBuffer(channels, kadrs));
    }
    int16_t out[4] = {};
    EXPECT_EQ(ring.Read(out, 4), 4);
    EXPECT_EQ(out[0], 7);
    EXPECT_EQ(out[3], 10);
}

TEST(DataRing, TwoThreadsPassEveryKadrOnceInOrder) {
    constexpr int32_t Kadrs = 400000, Block = 16;
    DataRing ring;
    ASSERT_TRUE(ring.ResetInputBuffer(3, 256));
    std::thread writer([&] {
        for (int32_t k = 0; k < Kadrs; k += Block) {
            while (!ring.Room(Block)) std::this_thread::yield();
            int16_t* place = ring.BlockToWrite();
            for (int32_t i = 0; i < Block * 3; i++) place[i] = static_cast<int16_t>((k * 3 + i) % 30011);
            ring.Commit(Block);
        }
    });
    std::mt19937 random(1);
    int64_t samples = 0, wrong = 0;
    std::vector<int16_t> out(300 * 3);
    while (samples < int64_t{Kadrs} * 3) {
        const int32_t got = ring.Read(out.data(), static_cast<int32_t>(random() % 300));
        if (got == 0) std::this_thread::yield();
        for (int32_t i = 0; i < got * 3; i++) wrong += out[static_cast<size_t>(i)] != (samples + i) % 30011;
        samples += got * 3;
    }
    writer.join();
    EXPECT_EQ(wrong, 0);
    EXPECT_EQ(ring.CountUnreadKadrs(), 0);
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

TEST(InputState, GetDataTakesWholeKadrsOfTheRecordedShape) {
    InputState input;
    input.ChTable = {2, 5};
    ASSERT_TRUE(PrepareInputBuffer(input, 64));
    int16_t next = 0;
    Write(input.Ring, 64, next);
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
