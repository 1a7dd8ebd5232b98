#include "engine/rate.h"

#include <gtest/gtest.h>

#include <limits>

namespace corvane {
namespace {

TEST(Rate, AnyNumberBecomesAReachableRate) {
    const float infinity = std::numeric_limits<float>::infinity();
    const struct {
        float Asked, Effective;
        int Divisor;
    } cases[] = {{400, 333.333333f, 2},
                 {300, 333.333333f, 2},
                 {2000, 1000, 0},
                 {3, 4, 249},
                 {10, 10, 99},
                 {999, 1000, 0},
                 {0, 4, 249},
                 {-1, 4, 249},
                 {infinity, 1000, 0},
                 {-infinity, 4, 249},
                 {std::numeric_limits<float>::quiet_NaN(), 4, 249}};
    DriverState state;
    state.Engine.Modules.resize(1);
    state.Engine.OpenedCount = 1;
    for (const auto& each : cases) {
        float rate = each.Asked;
        EXPECT_FLOAT_EQ(ApplyRate(state, rate), each.Effective) << each.Asked;
        EXPECT_EQ(state.Input.Rate, EffectiveRate(state.Input, each.Asked));
        EXPECT_EQ(state.Engine.Modules[0].Handle.FrequencyDivisor, each.Divisor);
        EXPECT_EQ(ApplyRate(state, state.Input.Rate), EffectiveRate(state.Input, each.Asked));  // stays where it is
    }
}

TEST(Rate, BlocksAndWaitsFollowTheRate) {
    const struct {
        float Rate;
        int32_t BlockKadrs, RecvTimeout;
        uint32_t StopWait;
    } cases[] = {{1000, 64, 564, 128}, {500, 32, 564, 128}, {250, 16, 564, 128},
                 {100, 8, 580, 160},   {50, 4, 580, 160},   {20, 1, 550, 100},
                 {10, 1, 600, 200},    {4, 1, 750, 500},    {1000.0f / 3, 32, 596, 192}};
    for (const auto& each : cases) {
        EXPECT_EQ(BlockKadrsFor(each.Rate), each.BlockKadrs) << each.Rate;
        EXPECT_EQ(RecvTimeoutFor(each.Rate, each.BlockKadrs), each.RecvTimeout);
        EXPECT_EQ(StopWaitFor(each.Rate, each.BlockKadrs), each.StopWait);
    }
}

}  // namespace
}  // namespace corvane
