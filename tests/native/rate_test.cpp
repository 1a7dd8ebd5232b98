// Rates, and the blocks and waits that follow from them.
#include "engine/rate.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <tuple>

namespace corvane {
namespace {

TEST(Rate, AnyNumberBecomesAReachableRate) {
    const float infinity = std::numeric_limits<float>::infinity();
    // Asked for, effective, divisor.
    const std::tuple<float, float, int> cases[] = {{400, 1000.0f / 3, 2}, {300, 1000.0f / 3, 2},  {3, 4, 249},
                                                   {10, 10, 99},          {999, 1000, 0},         {-1, 4, 249},
                                                   {infinity, 1000, 0},   {std::nanf(""), 4, 249}};
    InputState input;
    EngineState engine;
    engine.Modules.resize(1);
    engine.OpenedCount = 1;
    for (const auto& [asked, effective, divisor] : cases) {
        float rate = asked;
        EXPECT_FLOAT_EQ(ApplyRate(input, engine, rate), effective) << asked;
        EXPECT_EQ(input.Rate, EffectiveRate(input, asked));
        EXPECT_EQ(engine.Modules[0].Handle.FrequencyDivisor, divisor);
        EXPECT_EQ(ApplyRate(input, engine, input.Rate), EffectiveRate(input, asked));  // stays where it is
    }
}

TEST(Rate, BlocksAndWaitsFollowTheRate) {
    // Rate, kadrs, time-out, wait for the end.
    const std::tuple<float, int32_t, int32_t, uint32_t> cases[] = {
        {1000, 64, 564, 128}, {100, 8, 580, 160}, {20, 1, 550, 100}, {4, 1, 750, 500}, {1000.0f / 3, 32, 596, 192}};
    for (const auto& [rate, blockKadrs, recvTimeout, stopWait] : cases) {
        EXPECT_EQ(BlockKadrsFor(rate), blockKadrs) << rate;
        EXPECT_EQ(RecvTimeoutFor(rate, blockKadrs), recvTimeout);
        EXPECT_EQ(StopWaitFor(rate, blockKadrs), stopWait);
    }
}

}  // namespace
}  // namespace corvane
