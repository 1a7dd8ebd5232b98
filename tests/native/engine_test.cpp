// Rates with the blocks and waits that follow from them, and how a block's codes become samples.
#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>
#include <random>
#include <tuple>

#include "base/rounding.h"
#include "engine/rate.h"
#include "engine/store_block.h"
#include "simulator/sequence.h"

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
    input.RateMin = 1;  // below what eight bits divide down to
    EXPECT_EQ(EffectiveRate(input, 1), 1000.0f / 256);
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
    EXPECT_EQ(StopWaitFor(0, 0), 0u) << "nothing was ever recorded";
}

// The rule, written down once more in long-hand arithmetic.
int16_t Expected(double code) {
    if (!(code > -32768.0)) return -32768;
    if (code > 32767.0) code = 32767.0;
    double whole = std::floor(code);
    const double rest = code - whole;
    if (rest > 0.5 || (rest == 0.5 && std::fmod(whole, 2) != 0)) whole += 1;
    return static_cast<int16_t>(std::max(whole - 16384, -32768.0));
}

std::vector<double> Codes() {
    constexpr double Infinity = std::numeric_limits<double>::infinity(), NaN = std::numeric_limits<double>::quiet_NaN();
    std::vector<double> codes = {0.0,           -0.0,  1e300,  -1e300,   5e-324,    2147483647.5, 2147483648.0,
                                 -2147483649.0, 40000, -40000, Infinity, -Infinity, NaN,          -NaN};
    for (int code = -32770; code <= 32770; code++) {
        const double half = code + 0.5;
        for (const double each : {double(code), half, std::nextafter(half, -1e9), std::nextafter(half, 1e9)}) {
            codes.push_back(each);
        }
    }
    std::mt19937_64 random(7);
    for (int i = 0; i < 100000; i++) codes.push_back(std::bit_cast<double>(random()));
    while (codes.size() % (64 * ModuleChannels) != 0) codes.push_back(12345.5);
    return codes;
}

class StoreBlockTest : public testing::Test {
protected:
    StoreBlockTest() {
        Engine.Modules.resize(2);
        Engine.OpenedCount = 2;
        for (ModuleRecord& module : Engine.Modules) {
            for (MezzanineInfo& mezzanine : module.Mezzanines) mezzanine.Name = "fitted";
            module.Block.resize(64 * ModuleChannels);
        }
        Engine.Modules[1].Mezzanines[3].Name.clear();
    }

    // Every value must land at its channel's position and nowhere else. Only whole modules go the fast way.
    void Check(const std::vector<int16_t>& table, int32_t kadrs, size_t wholeModules) {
        const std::vector<double> codes = Codes();
        const StorePlan plan = MakeStorePlan(Engine, table);
        EXPECT_EQ(plan.Dense.size(), wholeModules);
        std::vector<int16_t> ring(64 * table.size() + 1);
        int64_t wrong = 0;
        for (size_t first = 0; first < codes.size(); first += 64 * ModuleChannels) {
            std::copy_n(codes.begin() + static_cast<ptrdiff_t>(first), 64 * ModuleChannels,
                        Engine.Modules[0].Block.begin());
            std::reverse_copy(Engine.Modules[0].Block.begin(), Engine.Modules[0].Block.end(),
                              Engine.Modules[1].Block.begin());
            std::fill(ring.begin(), ring.end(), int16_t{0});
            ring.back() = 4711;
            StoreBlock(plan, kadrs, ring.data());
            const double* const block = Engine.Modules[0].Block.data();
            ASSERT_EQ(AllNumbers(block, kadrs), std::all_of(block, block + kadrs * ModuleChannels,
                                                            [](double code) { return std::isfinite(code); }));
            for (size_t i = 0; i < 64 * table.size(); i++) {
                const int16_t channel = table[i % table.size()];
                const ModuleRecord& module = Engine.Modules[static_cast<size_t>(channel / ModuleChannels)];
                const bool stored = i / table.size() < static_cast<size_t>(kadrs) &&
                                    channel < Engine.OpenedCount * ModuleChannels &&
                                    ChannelFitted(module, channel % ModuleChannels);
                const double code =
                    module.Block[i / table.size() * ModuleChannels + static_cast<size_t>(channel % ModuleChannels)];
                wrong += ring[i] != (stored ? Expected(code) : 0);
            }
            ASSERT_EQ(ring.back(), 4711);
        }
        EXPECT_EQ(wrong, 0);
    }

    EngineState Engine;
};

TEST_F(StoreBlockTest, EveryDoubleInEveryShapeOfTable) {
    const std::vector<int16_t> all = FirstChannels(32);
    const std::vector<int16_t> second(all.begin() + 16, all.end());
    const std::vector<int16_t> one = {0}, some = {3, 20, 22, 23, 31};
    const std::vector<int16_t> gap = {0, 1, 2, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16};
    std::vector<int16_t> halves(all.begin(), all.begin() + 8);  // sixteen channels, but of two modules
    halves.insert(halves.end(), all.begin() + 24, all.end());
    const std::pair<std::vector<int16_t>, size_t> rows[] = {{all, 2},  {second, 1}, {one, 0},
                                                            {some, 0}, {gap, 0},    {halves, 0}};
    for (const auto& [table, wholeModules] : rows) {
        Check(table, 64, wholeModules);
        Check(table, 63, wholeModules);
    }
    Engine.OpenedCount = 1;  // the other one is gone
    Check(some, 64, 0);
    for (const auto& [value, rounded] : {std::pair{2.5, 2}, {3.5, 4}, {-1e300, INT32_MIN}, {1e300, INT32_MAX}}) {
        EXPECT_EQ(RoundToInt32(value), rounded);
    }
}

TEST(AllNumbers, LooksAtTheWholeBlockAndNoFurther) {
    for (const int at : {0, 1, 2 * ModuleChannels - 1, 2 * ModuleChannels}) {
        std::vector<double> block(3 * ModuleChannels, -1.5);
        block[static_cast<size_t>(at)] = std::nan("");
        EXPECT_EQ(AllNumbers(block.data(), 2), at == 2 * ModuleChannels) << at;
    }
}

}  // namespace
}  // namespace corvane
