#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <random>

#include "tests/native/driver_fixture.h"

namespace corvane {
namespace {

#if defined(__SANITIZE_THREAD__) || defined(__SANITIZE_ADDRESS__)
constexpr int64_t Kadrs = 1000000;
#else
constexpr int64_t Kadrs = 10000000;
#endif

using EnduranceTest = DriverFixture;

// Of this process; a recording's thread must not outlive it.
auto Threads() {
    return std::distance(std::filesystem::directory_iterator("/proc/self/task"), {});
}

TEST_F(EnduranceTest, EveryKadrPassesOnceInOrder) {
    Configure(SequenceCrate({3, 5}, "0", "type = \"LTR010\""));
    ASSERT_TRUE(Driver->Test());
    Select(FirstChannels(32));
    Driver->SetRate(1000);
    Driver->SetInputSizeData(2048);
    platform::SkipSleeps = true;
    ASSERT_TRUE(Driver->StartRecord());
    std::thread neighbour([] {  // another host thread records beside it
        DriverObject driver;
        EXPECT_TRUE(driver.Test() && driver.StartRecord()) << driver.LastError();
        for (int32_t next = 0; next < 2500 && driver.Busy();) {
            int16_t sample = 0;
            int32_t count = 1, remaining = 0;
            if (driver.GetData(&sample, count, remaining) == 0) continue;
            ASSERT_EQ(KadrNumber(sample), next++);
        }
        EXPECT_EQ(driver.Rate(), 10);
    });
    std::mt19937 random(20);
    std::vector<int16_t> buffer(3000 * 32);
    SequenceCheck check(2);
    int64_t fills = 0;
    while (check.Kadrs() < Kadrs) {
        if (random() % 2000 == 0) {  // a stall that fills the ring
            ASSERT_TRUE(Eventually([&] { return Driver->InputCountKadrs() > 2048 - 64; }));
            fills++;
        }
        int32_t count = static_cast<int32_t>(random() % buffer.size()), remaining = 0;
        const int32_t kadrs = Driver->GetData(buffer.data(), count, remaining);
        check.Take(buffer.data(), kadrs);
        if (kadrs == 0) std::this_thread::yield();
    }
    neighbour.join();
    StopWhole();
    EXPECT_EQ(check.Fault(), "");
    EXPECT_GE(check.Next(0), Kadrs);
    EXPECT_EQ(check.Next(0), check.Next(1));
    EXPECT_GT(fills, 10);
}

TEST_F(EnduranceTest, StartsAndStopsLeaveNothingBehindNorDoesTheEndInTheMiddle) {
    const auto threads = Threads();
    std::mt19937 random(3);
    const float rates[] = {1000, 500, 250, 20, 4};
    for (int cycle = 0; cycle < 100; cycle++) {
        Configure(SequenceCrate({3, 5}, cycle % 2 ? "0" : "1.0"));
        ASSERT_TRUE(Driver->Test());
        for (int run = 0; run < 5 && cycle % 2 != 0; run++) {
            Select(run % 3 == 0 ? std::vector<int16_t>{0} : std::vector<int16_t>{1, 17});
            Driver->SetRate(rates[run]);
            ASSERT_TRUE(Driver->StartRecord()) << cycle << " " << Driver->LastError();
            ASSERT_TRUE(random() % 2 == 0 || Eventually([&] { return Driver->InputCountKadrs() > 0; }));
            Driver->StopRecord();
            ASSERT_TRUE(Eventually([] { return LtrSim_RunningModules() == 0; }));
        }
        Select({0, 16});
        Driver->SetRate(1000);
        if (cycle % 10 == 0)
            AddFault("call = \"LTR27_Recv\"\nstall = true");  // the thread hangs in a receive of 564 ms
        ASSERT_TRUE(Driver->StartRecord());
        if (cycle % 3) std::this_thread::sleep_for(std::chrono::milliseconds(cycle % 7));
        if (cycle % 4 == 0) Driver->StopRecord();
        Driver.reset();
        ASSERT_EQ(LtrSim_OpenConnections(), 0);
        ASSERT_EQ(LtrSim_RunningModules(), 0);
        ASSERT_EQ(LtrSim_Violations(), 0) << LtrSim_Message();
    }
    EXPECT_TRUE(Eventually([&] { return Threads() == threads; }));
}

}  // namespace
}  // namespace corvane
