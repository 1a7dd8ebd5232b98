#include "driver/model/data_ring.h"

#include <gtest/gtest.h>

#include <limits>
#include <numeric>
#include <tuple>
#include <vector>

#include "driver/model/input_state.h"

namespace corvane {
namespace {

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
