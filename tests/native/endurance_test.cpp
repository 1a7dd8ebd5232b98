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

class EnduranceTest : public DriverFixture {
protected:
    // Memory and threads that exist when everything is idle.
    static int Threads() {
        int threads = 0;
        for (const auto& entry : std::filesystem::directory_iterator("/proc/self/task"))
            threads += !entry.path().empty();
        return threads;
    }
};

// The even channels carry the low, the odd ones the high half of their module's kadr number.
struct KadrCheck {
    int64_t Next[2] = {-1, -1};
    int64_t Wrong = 0;

    void Take(const int16_t* kadr) {
        for (int module = 0; module < 2; module++) {
            const int16_t* samples = kadr + module * 16;
            const int64_t number = KadrNumber(samples[0]) + int64_t{KadrNumber(samples[1])} * 32768;
            Wrong += Next[module] >= 0 && number != Next[module];
            for (int channel = 2; channel < 14; channel++) Wrong += samples[channel] != samples[channel % 2];
            Next[module] = number + 1;
        }
    }
};

TEST_F(EnduranceTest, EveryKadrPassesOnceInOrder) {
    Configure(SequenceCrate({3, 5}, "0", "type = \"LTR010\""));
    ASSERT_TRUE(Driver->Test());
    std::vector<int16_t> all(32);
    for (int16_t channel = 0; channel < 32; channel++) all[static_cast<size_t>(channel)] = channel;
    Select(all);
    Driver->SetRate(1000);
    Driver->SetInputSizeData(2048);
    platform::SkipSleeps = true;
    ASSERT_TRUE(Driver->StartRecord());
    std::mt19937 random(20);
    std::vector<int16_t> buffer(3000 * 32);
    KadrCheck check;
    int64_t fills = 0;
    for (int64_t taken = 0; taken < Kadrs;) {
        if (random() % 2000 == 0) {  // a stall that fills the ring
            ASSERT_TRUE(Eventually([&] { return Driver->InputCountKadrs() > 2048 - 64; }));
            fills++;
        }
        int32_t count = static_cast<int32_t>(random() % buffer.size());
        int32_t remaining = 0;
        const int32_t kadrs = Driver->GetData(buffer.data(), count, remaining);
        for (int32_t k = 0; k < kadrs; k++) check.Take(&buffer[static_cast<size_t>(k) * 32]);
        taken += kadrs;
        if (kadrs == 0) std::this_thread::yield();
    }
    StopWhole();
    EXPECT_EQ(check.Wrong, 0);
    EXPECT_GE(check.Next[0], Kadrs);
    EXPECT_EQ(check.Next[0], check.Next[1]);
    EXPECT_GT(fills, 10);
}

TEST_F(EnduranceTest, StartsAndStopsLeaveNothingBehind) {
    Configure(SequenceCrate({3, 5}, "0", "type = \"LTR010\""));
    ASSERT_TRUE(Driver->Test());
    const int threads = Threads();
    std::mt19937 random(3);
    const float rates[] = {1000, 500, 250, 20, 4};
    for (int cycle = 0; cycle < 500; cycle++) {
        Select(cycle % 3 == 0 ? std::vector<int16_t>{0} : std::vector<int16_t>{1, 17});
        Driver->SetRate(rates[cycle % 5]);
        ASSERT_TRUE(Driver->StartRecord()) << cycle << " " << Driver->LastError();
        const bool waitForData = random() % 2 != 0;
        ASSERT_TRUE(!waitForData || Eventually([&] { return Driver->InputCountKadrs() > 0; }));
        Driver->StopRecord();
        ASSERT_TRUE(Eventually([] { return LtrSim_RunningModules() == 0; }));
    }
    EXPECT_TRUE(Eventually([&] { return Threads() == threads; }));
}

TEST_F(EnduranceTest, TheLastObjectMayGoInTheMiddleOfARecording) {
    const int threads = Threads();
    for (int cycle = 0; cycle < 100; cycle++) {
        Configure(SequenceCrate({3, 5}, cycle % 2 ? "0" : "1.0"));
        ASSERT_TRUE(Driver->Test());
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

TEST_F(EnduranceTest, HostThreadsRecordSideBySide) {
    Driver.reset();
    ASSERT_EQ(LtrSim_Configure(SequenceCrate({3, 5}, "0", "type = \"LTR010\"").c_str()), 0);
    const auto host = [](int16_t channel, float rate) {
        DriverObject driver;
        ASSERT_TRUE(driver.Test()) << driver.LastError();
        driver.SetInputChannels(std::vector<int16_t>{channel});
        driver.SetRate(rate);
        for (int run = 0; run < 5; run++) {
            ASSERT_TRUE(driver.StartRecord()) << driver.LastError();
            for (int32_t next = 0; next < 500;) {
                int16_t sample = 0;
                int32_t count = 1;
                int32_t remaining = 0;
                if (driver.GetData(&sample, count, remaining) == 0) continue;
                ASSERT_EQ(KadrNumber(sample), next++);
            }
            driver.StopRecord();
        }
        EXPECT_FLOAT_EQ(driver.Rate(), rate);
    };
    std::thread first(host, int16_t{0}, 1000.0f);
    std::thread second(host, int16_t{16}, 500.0f);
    first.join();
    second.join();
}

}  // namespace
}  // namespace corvane
