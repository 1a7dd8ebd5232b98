#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <ctime>
#include <random>

#include "simulator/scenario.h"
#include "tests/native/driver_fixture.h"

namespace corvane {
namespace {

using Clock = std::chrono::steady_clock;

double MillisecondsSince(Clock::time_point start) {
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

class RecordingTest : public DriverFixture {
protected:
    void Open(const std::string& toml, const std::vector<int16_t>& channels, float rate) {
        Configure(toml);
        ASSERT_TRUE(Driver->Test()) << Driver->LastError();
        Select(channels);
        Driver->SetRate(rate);
    }

    // The first kadrs of a whole recording.
    std::vector<int16_t> Record(int32_t kadrs) {
        EXPECT_TRUE(Driver->StartRecord()) << Driver->LastError();
        std::vector<int16_t> samples = Take(kadrs);
        StopWhole();
        return samples;
    }
};

TEST_F(RecordingTest, StartFailuresNameTheirReasonAndLeaveNothingRunning) {
    Open(SequenceCrate({3, 5}, "1.0"), {0, 16}, 1000);
    DriverState& state = State();
    const std::pair<const char*, std::function<void()>> cases[] = {
        {"The Sampling Rate is not selected!", [&] { state.Input.Rate = 0; }},
        {"Any channel is not selected!", [&] { state.Input.ChTable.clear(); }},
        {"", [&] { Driver->SetInputSizeData(INT32_MAX); }},
        {"Error '-41':\r\n", [&] { AddFault("call = \"LTR27_SetConfig\"\nslot = 5\nerror = -41"); }},
        {"Unable create thread!", [] { platform::FailThreadCreation = true; }},
        {"Error '-42':\r\n",
         [&] {
             AddFault("call = \"LTR27_ADCStart\"\nslot = 5\nerror = -42");
             AddFault("call = \"LTR27_ADCStop\"\ndelay = 0.1");
         }},
    };
    for (const auto& [reason, fail] : cases) {
        fail();
        for (int attempt = 0; attempt < 2; attempt++) {  // the second hears its own error: no thread is left
            EXPECT_FALSE(Driver->StartRecord()) << reason;
            EXPECT_FALSE(Driver->Busy());
            const std::string error = Driver->LastError();
            EXPECT_TRUE(*reason == '\0' ? error.empty() : error.starts_with(reason)) << error;
            EXPECT_EQ(LtrSim_RunningModules(), 0);
        }
        state.Input.Rate = 1000;
        state.Input.ChTable = {0, 16};
        Driver->SetInputSizeData(32768);
        platform::FailThreadCreation = false;
        LtrSim_ClearFaults();
        EXPECT_TRUE(Driver->StartRecord()) << Driver->LastError();
        EXPECT_EQ(Driver->LastError(), "");
        EXPECT_FALSE(Driver->StartRecord());  // busy
        StopWhole();
    }
}

TEST_F(RecordingTest, StartNeedsAnOpenDeviceAndTheEndOfThePreviousThread) {
    EXPECT_FALSE(Driver->StartRecord());
    EXPECT_EQ(Driver->LastError(), "");
    Open(SequenceCrate({3, 5}, "1.0", "type = \"LTR010\""), {0, 16}, 4);
    AddFault("call = \"LTR27_Recv\"\nslot = 3\nstall = true");
    ASSERT_TRUE(Driver->StartRecord());
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    const auto start = Clock::now();
    Driver->StopRecord();  // the receive waits up to 750 ms, stopping only two block periods of 250 ms
    EXPECT_LT(MillisecondsSince(start), 600);
    EXPECT_FALSE(Driver->StartRecord());
    EXPECT_EQ(Driver->LastError(), "Please wait end of previous thread of recording!");
    EXPECT_EQ(Driver->GetChannel(0), 0);  // the thread still holds the module
    DriverState& state = State();
    Driver->SetRate(1000);
    EXPECT_EQ(state.Engine.Modules[0].Handle.FrequencyDivisor, 249);  // and its record
    EXPECT_TRUE(Eventually([] { return LtrSim_RunningModules() == 0; }));
    EXPECT_EQ(LtrSim_Calls("LTR27_Recv"), 1);  // the other module's turn never came
    Driver->SetRate(4);
    LtrSim_ClearFaults();
    EXPECT_TRUE(Eventually([&] { return Driver->StartRecord(); }));
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    Driver->StopRecord();
    EXPECT_EQ(LtrSim_RunningModules(), 0) << "a stop waits for a thread that ends in time";
}

TEST_F(RecordingTest, ChannelsOfBothModulesLandInTheirPlaces) {
    for (const int16_t channel : {int16_t{0}, int16_t{20}}) {  // only the modules of selected channels run
        Open(SequenceCrate({3, 5}, "1.0"), {channel}, 1000);
        AddFault(std::string("call = \"LTR27_Recv\"\ndelay = 20\nslot = ") +
                 (channel == 0 ? "5" : "3"));  // nobody asks it
        ASSERT_TRUE(Driver->StartRecord());
        EXPECT_EQ(LtrSim_RunningModules(), 1);
        EXPECT_FALSE(Take(64).empty());
        StopWhole();
    }
    Open(SequenceCrate({3, 5}, "1.0"), {0, 15, 16, 17, 31}, 1000);
    Driver->SetInputSizeData(1500);
    EXPECT_EQ(Driver->InputSizeKadrs(), 375);  // a quarter: the largest power of two not above five channels
    EXPECT_EQ(Driver->InputSizeData(), 1875);
    ASSERT_TRUE(Driver->StartRecord());
    EXPECT_EQ(Driver->InputSizeKadrs(), 1536);  // whole blocks of 64
    Driver->SetRate(10);                        // both ignored while recording
    Select({1});
    EXPECT_EQ(Driver->Rate(), 1000);
    EXPECT_EQ(Driver->InputChannels(), (std::vector<int16_t>{0, 15, 16, 17, 31}));
    const std::vector<int16_t> samples = Take(256);
    ASSERT_EQ(samples.size(), 256u * 5);
    for (int32_t k = 0; k < 256; k++) {
        const int16_t* kadr = &samples[static_cast<size_t>(k) * 5];
        EXPECT_EQ(KadrNumber(kadr[0]), KadrNumber(samples[0]) + k);
        EXPECT_EQ(KadrNumber(kadr[2]), KadrNumber(samples[2]) + k);
        EXPECT_EQ(std::tuple(kadr[1], kadr[3], kadr[4]), std::tuple(0, -16384, 0)) << "the last position is empty";
    }
    ASSERT_TRUE(Eventually([&] { return Driver->InputCountKadrs() > 0; }));
    StopWhole();
    // Unread kadrs keep the channels that they were recorded with; the new table holds once they are read.
    Select({7});
    const InputDataShape shape = Driver->NextInputData();
    ASSERT_EQ(shape.Channels, 5);
    EXPECT_EQ(Driver->InputCountData(), shape.Kadrs * 5);
    std::vector<int16_t> data(static_cast<size_t>(shape.Kadrs + 1) * 5);
    Driver->TakeInputData(shape, data.data());
    EXPECT_EQ(std::vector<int16_t>(data.begin(), data.begin() + 5), (std::vector<int16_t>{0, 15, 16, 17, 31}));
    EXPECT_EQ(KadrNumber(data[5]), KadrNumber(samples[0]) + 256);
    EXPECT_EQ(Driver->NextInputData().Channels, 1);
}

TEST_F(RecordingTest, SamplesAreTheSimulatedSignals) {
    std::string scenario = ltrsim::DefaultScenario;
    scenario.replace(scenario.find("speed = 1.0"), 11, "speed = 0");
    Open(scenario, FirstChannels(32), 500);
    const std::vector<int16_t> samples = Record(2048);
    ASSERT_FALSE(samples.empty());
    constexpr int64_t FirstKadr = 3;  // at full speed the START mark shows in the fourth kadr
    int fitted = 0;
    for (int channel = 0; channel < 32; channel++) {
        const bool empty = std::isnan(LtrSim_ExpectedCode(channel < 16 ? 3 : 5, channel % 16, 0, 500));
        EXPECT_EQ(empty, Driver->ChannelName(static_cast<int16_t>(channel)) == "Empty");
        fitted += !empty;
        double worst = 0;
        for (int64_t k = 0; k < 2048; k++) {
            const double code = LtrSim_ExpectedCode(channel < 16 ? 3 : 5, channel % 16, FirstKadr + k, 500);
            const int16_t sample = samples[static_cast<size_t>(k * 32 + channel)];
            worst = std::max(worst, std::abs(sample - (empty ? 0 : code - 16384)));
        }
        EXPECT_LE(worst, 1.0) << channel;
    }
    EXPECT_EQ(fitted, 20);
}

TEST_F(RecordingTest, ShortReceivesArePaddedAndNeverShiftChannels) {
    // The third receive breaks off inside a kadr, and so does its second attempt; later ones are whole again.
    Open(SequenceCrate({3}, "0", "type = \"LTR010\""), {0, 1, 2, 12}, 1000);
    AddFault("call = \"LTR27_Recv\"\nafter = 2\ntimes = 1\nshort = 600");
    AddFault("call = \"LTR27_Recv\"\nafter = 3\ntimes = 1\nstall = true");
    const std::vector<int16_t> samples = Record(6 * 64);
    ASSERT_FALSE(samples.empty());
    int32_t next = 0;  // number of the module's next kadr
    for (size_t k = 0; k < 6 * 64; k++) {
        const int16_t* kadr = &samples[k * 4];
        const bool padded = k >= 2 * 64 + 38 && k < 3 * 64;  // 600 words are 37 kadrs and half of one
        const int32_t number = padded ? 16384 : next++;
        EXPECT_EQ(std::pair(KadrNumber(kadr[0]), KadrNumber(kadr[2])), std::pair(number, number)) << k;
        EXPECT_EQ(kadr[1], padded ? 0 : -16384) << k;
        EXPECT_EQ(KadrNumber(kadr[3]), k == 2 * 64 + 37 ? 16384 : number) << k;
    }
    // A recording that ends inside a kadr leaves nothing to the next one.
    AddFault("call = \"LTR27_Recv\"\ntimes = 1\nshort = 601");
    AddFault("call = \"LTR27_Recv\"\nerror = -12");
    EXPECT_FALSE(Record(64).empty());
    LtrSim_ClearFaults();
    const std::vector<int16_t> next64 = Record(64);
    for (size_t k = 0; k < next64.size() / 4; k++) EXPECT_EQ(KadrNumber(next64[4 * k]), k);
    EXPECT_EQ(next64.size(), 4u * 64);
    AddFault("call = \"LTR27_Recv\"\nerror = -12");
    EXPECT_EQ(Record(64), std::vector<int16_t>(size_t{4} * 64, -16384)) << "nothing was ever measured";
}

TEST_F(RecordingTest, GapsAreExactToTheKadr) {
    const auto cut = [](int words) {  // in the third block, and nothing more at the second attempt
        return "call = \"LTR27_Recv\"\nafter = 2\ntimes = 1\nshort = " + std::to_string(words);
    };
    const std::string size = "call = \"LTR27_ProcessData\"\nafter = 2\ntimes = 1\nsize = 0";
    const std::string value = "call = \"LTR27_ProcessData\"\nafter = 2\ntimes = 1\nvalue = nan";  // in the middle
    using GapReason::CutShort, GapReason::NotProcessed;
    const struct {
        std::string Fault;
        int16_t Channel;  // recorded alone
        float Rate;       // Hz
        Gap Expected;     // no kadrs: none
        int Last;         // number of the last of six blocks' kadrs
    } rows[] = {{cut(600), 7, 1000, {0, 166, 26, CutShort}, 357},  {cut(599), 7, 1000, {0, 165, 27, CutShort}, 357},
                {cut(600), 8, 1000, {0, 165, 27, CutShort}, 357},  {cut(1), 0, 1000, {0, 129, 63, CutShort}, 320},
                {cut(1023), 0, 1000, {0, 0, 0, CutShort}, 383},    {cut(1021), 12, 1000, {0, 0, 0, CutShort}, 383},
                {cut(1021), 13, 1000, {0, 191, 1, CutShort}, 383}, {size, 0, 1000, {0, 128, 64, CutShort}, 383},
                {value, 0, 1000, {0, 160, 1, NotProcessed}, 383},  {value, 0, 4, {0, 2, 1, NotProcessed}, 5}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.Fault + ", channel " + std::to_string(row.Channel));
        Open(SequenceCrate({3}, "0", "type = \"LTR010\""), {row.Channel}, row.Rate);
        AddFault(row.Fault);
        if (row.Fault.find("short") != std::string::npos) {
            AddFault("call = \"LTR27_Recv\"\nafter = 3\ntimes = 1\nerror = -12");
        }
        const int kadrs = row.Rate == 4 ? 6 : 6 * 64;
        ASSERT_TRUE(Driver->StartRecord()) << Driver->LastError();
        const std::vector<int16_t> samples = Take(kadrs);
        std::vector<Gap> gaps = Driver->Gaps();
        std::erase_if(gaps, [&](const Gap& gap) { return gap.First >= kadrs; });
        StopWhole();
        ASSERT_FALSE(samples.empty());
        ASSERT_EQ(gaps.size(), row.Expected.Kadrs == 0 ? 0u : 1u);
        EXPECT_TRUE(gaps.empty() || gaps.front() == row.Expected) << gaps.front().First << ", " << gaps.front().Kadrs;
        EXPECT_TRUE(row.Channel % 2 != 0 || KadrNumber(samples.back()) == row.Last) << KadrNumber(samples.back());
    }
}

// Whoever is waited for: the host, the START mark, a module whose receives fail at once.
TEST_F(RecordingTest, WaitingTakesNoProcessorTime) {
    const std::pair<const char*, const char*> rows[] = {
        {"", ""}, {"start_marks = \"never\"", ""}, {"type = \"LTR010\"", "call = \"LTR27_Recv\"\nerror = -12"}};
    for (const auto& [crate, fault] : rows) {
        Open(SequenceCrate({3}, "0", crate), {0}, *fault == '\0' ? 1000 : 4);
        if (*fault != '\0') AddFault(fault);
        Driver->SetInputSizeData(1024);
        ASSERT_TRUE(Driver->StartRecord()) << Driver->LastError();
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        const std::clock_t before = std::clock();
        std::this_thread::sleep_for(std::chrono::milliseconds(200));
        EXPECT_LT(double(std::clock() - before) / CLOCKS_PER_SEC, 0.1) << crate << fault;
        StopWhole();
    }
}

TEST_F(RecordingTest, TheStartMarkBeginsTheRecording) {
    for (const int32_t first : {3, 64, 201}) {  // in the first block, just after it, and later
        Open(SequenceCrate({3, 5}, "0", "start_marks = \"at once\"\nstart_mark_kadr = " + std::to_string(first)),
             {0, 16}, 1000);
        if (first == 3) AddFault("call = \"LTR27_Recv\"\nslot = 5\ntimes = 1\nstall = true");  // one comes later
        // A block that can't be processed doesn't count: the module begins with its next one.
        if (first == 64) AddFault("call = \"LTR27_ProcessData\"\nslot = 5\ntimes = 1\nerror = -1");
        // What follows a kadr that was cut is late, and so are its marks.
        if (first == 201) AddFault("call = \"LTR27_Recv\"\nslot = 3\nafter = 1\ntimes = 1\nshort = 1000");
        State().Crate.MarkSTARTMode = 4;
        const std::vector<int16_t> samples = Record(128);
        ASSERT_FALSE(samples.empty());
        EXPECT_EQ(LtrSim_LastMarkMode(), 1);  // waits for DIGIN1 to rise
        EXPECT_EQ(KadrNumber(samples[1]), first == 64 ? 128 : first);
        for (const int k : {0, 127}) EXPECT_EQ(KadrNumber(samples[static_cast<size_t>(2 * k)]), first + k);
    }
}

TEST_F(RecordingTest, AMarkThatNeverComesBringsNoKadr) {
    Open(SequenceCrate({3, 5}, "1.0", "start_marks = \"never\""), {0, 16}, 1000);
    // The seconds in the lower half of the marks tick before and while the mark is awaited, and mean nothing.
    std::this_thread::sleep_for(std::chrono::milliseconds(1100));
    ASSERT_TRUE(Driver->StartRecord());
    std::this_thread::sleep_for(std::chrono::milliseconds(1100));
    EXPECT_TRUE(Driver->Busy());
    EXPECT_EQ(Driver->InputCountKadrs(), 0);
    const auto start = Clock::now();
    StopWhole();
    EXPECT_LT(MillisecondsSince(start), 150);
}

TEST_F(RecordingTest, WithoutMarksTheModulesAreAlignedByTheirStarts) {
    Open(SequenceCrate({3, 5}, "1.0", "type = \"LTR010\""), {0, 16}, 1000);
    AddFault("call = \"LTR27_ADCStart\"\nslot = 5\ndelay = 1.1");  // starts more than a thousand kadrs later
    const std::vector<int16_t> samples = Record(128);
    ASSERT_FALSE(samples.empty());
    EXPECT_EQ(KadrNumber(samples[1]), 0);
    const std::vector<ModuleRecord>& modules = State().Engine.Modules;
    EXPECT_EQ(KadrNumber(samples[0]), modules[1].StartTick - modules[0].StartTick);  // one kadr each millisecond
    EXPECT_GE(KadrNumber(samples[0]), 1100);
    EXPECT_EQ(KadrNumber(samples[2 * 127]), KadrNumber(samples[0]) + 127);
}

TEST_F(RecordingTest, UnpluggingGoesOnAndStopsInTime) {
    Open(SequenceCrate({3, 5}, "1.0", "type = \"LTR010\""), {0, 16}, 1000);
    ASSERT_TRUE(Driver->StartRecord());
    ASSERT_FALSE(Take(64).empty());
    AddFault("slot = 5\nunplug = true");
    ASSERT_FALSE(Take(256).empty());
    std::vector<int16_t> samples = Take(128);
    ASSERT_FALSE(samples.empty());
    for (size_t k = 1; k < 64; k++) {
        EXPECT_EQ(samples[2 * k], samples[0] + static_cast<int16_t>(k)) << k;  // the other module goes on
        EXPECT_EQ(samples[2 * k + 1], samples[2 * (k + 64) + 1]);              // this one repeats its last block
    }
    // Both gone: the repeated blocks keep the pace of the rate. A delay up to a second is caught up, a longer one not;
    // each receive that is delayed here times out after 564 ms besides.
    AddFault("slot = 3\nunplug = true");
    std::this_thread::sleep_for(std::chrono::milliseconds(200));
    for (const auto& [delay, lost] : {std::pair{"0.2", 0}, {"1.0", 1564}}) {
        LtrSim_ClearFaults();
        AddFault("call = \"LTR27_Recv\"\nslot = 3\ntimes = 1\ndelay = " + std::string(delay));
        AddFault("unplug = true");
        const int32_t before = Driver->InputCountKadrs();
        const auto start = Clock::now();
        std::this_thread::sleep_for(std::chrono::milliseconds(1000 + lost));
        EXPECT_NEAR(Driver->InputCountKadrs() - before, MillisecondsSince(start) - lost, 300) << delay;
    }
    const auto stop = Clock::now();
    Driver->StopRecord();
    EXPECT_LT(MillisecondsSince(stop), 140);
    EXPECT_EQ(Driver->LastError(), "");
    EXPECT_TRUE(Driver->Test());
}

TEST_F(RecordingTest, WhatCameDuringADelayIsTakenAtOnceAndNothingTwice) {
    Open(SequenceCrate({3}, "1.0", "type = \"LTR010\""), {0}, 1000);
    AddFault("call = \"LTR27_Recv\"\nafter = 2\ntimes = 1\ndelay = 0.7");
    const auto start = Clock::now();
    ASSERT_TRUE(Driver->StartRecord());
    for (const char* then : {"unplug = true", ""}) {
        std::this_thread::sleep_until(start + std::chrono::milliseconds(*then == '\0' ? 1300 : 900));
        EXPECT_NEAR(Driver->InputCountKadrs(), MillisecondsSince(start), 250) << then;
        if (*then != '\0') AddFault(then);
    }
    StopWhole();
}

TEST_F(RecordingTest, AThreadThatStaysAwayKeepsItsStateUntilItComesBack) {
    Open(SequenceCrate({3}, "1.0"), {0}, 1000);
    AddFault("call = \"LTR27_Recv\"\ntimes = 1\ndelay = 1e6");
    ASSERT_TRUE(Driver->StartRecord());
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    const auto start = Clock::now();
    Driver.reset();
    EXPECT_NEAR(MillisecondsSince(start), 128 + 2 * 564 + 5000, 300);
    EXPECT_EQ(LtrSim_RunningModules(), 1);
    Driver = std::make_unique<DriverObject>();
    ASSERT_TRUE(Driver->Test() && Driver->StartRecord()) << Driver->LastError();
    EXPECT_EQ(Take(64).size(), 64u) << "the next host does not depend on it";
    Driver.reset();
    EXPECT_EQ(LtrSim_OpenConnections(), 1);
    LtrSim_ClearFaults();
    EXPECT_TRUE(Eventually([] { return LtrSim_RunningModules() == 0; }));  // it came back and stopped its module
    EXPECT_TRUE(Eventually([] { return DriverObject(), LtrSim_OpenConnections() == 0; })) << "closed by the next host";
}

TEST_F(RecordingTest, AProcessMayEndWhileItsRecordingHangs) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const auto hang = [this] {
        Open(SequenceCrate({3}, "1.0"), {0}, 1000);
        AddFault("call = \"LTR27_Recv\"\ndelay = 1e6");
        if (Driver->StartRecord() && Eventually([] { return LtrSim_Calls("LTR27_Recv") > 0; })) std::exit(3);
    };
    EXPECT_EXIT(hang(), testing::ExitedWithCode(3), "");
}

#ifdef CORVANE_SANITIZED
constexpr int64_t ManyKadrs = 1000000;
#else
constexpr int64_t ManyKadrs = 10000000;
#endif

TEST_F(RecordingTest, EveryKadrPassesOnceInOrder) {
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
    while (check.Kadrs() < ManyKadrs) {
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
    EXPECT_GE(check.Next(0), ManyKadrs);
    EXPECT_EQ(check.Next(0), check.Next(1));
    EXPECT_GT(fills, 10);
}

}  // namespace
}  // namespace corvane
