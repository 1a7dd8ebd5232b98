// What is left when memory runs out, at each allocation in turn.
#include "standins/short_memory.h"

#include <gtest/gtest.h>

#include <new>
#include <utility>

#include "engine/acquisition.h"
#include "tests/native/driver_fixture.h"

namespace corvane {
namespace {

class ShortMemory : public DriverFixture {
protected:
    void Open() {
        Configure(SequenceCrate({3, 5}, "1.0"));
        ASSERT_TRUE(Driver->Test()) << Driver->LastError();
        Select({0, 16});
        Driver->SetRate(1000);
    }
};

TEST_F(ShortMemory, AnOpeningWithoutItIsMadeGoodByTheNext) {
    for (int allocation = 1, unused = 0; unused == 0; allocation++) {
        Configure(SequenceCrate({3, 5}, "1.0"));
        FailingAllocation = allocation;
        try {
            Driver->Test();
        } catch (const std::bad_alloc&) {
        }
        unused = std::exchange(FailingAllocation, 0);
        const int16_t last = static_cast<int16_t>(Driver->ChannelsCount() - 1);
        ASSERT_EQ(Driver->ChannelName(last), last == 15 && !Driver->Detected() ? "M8-2" : "Empty") << allocation;
        ASSERT_TRUE(Driver->Test() || !Driver->LastError().empty()) << allocation;
        ASSERT_EQ(LtrSim_OpenConnections(), Driver->ModulesCount()) << allocation;
        ASSERT_TRUE(unused == 0 || Driver->ModulesCount() == 2);
        Driver.reset();
        ASSERT_EQ(LtrSim_OpenConnections(), 0) << allocation;
    }
}

TEST_F(ShortMemory, AStartWithoutItLeavesNothingRunning) {
    for (int allocation = 1, unused = 0; unused == 0; allocation++) {
        Open();
        State().Crate.Serial = "no crate has such a long one";  // takes memory when the START mark is asked for
        bool started = false;
        FailingAllocation = allocation;
        try {
            started = Driver->StartRecord();
        } catch (const std::bad_alloc&) {
        }
        unused = std::exchange(FailingAllocation, 0);
        ASSERT_EQ(Driver->Busy(), started) << allocation;
        ASSERT_EQ(LtrSim_RunningModules(), started ? 2 : 0) << allocation;
        ASSERT_TRUE(started || !State().Engine.Thread.Running()) << allocation;
        ASSERT_TRUE(started || unused == 0) << "only the log does without its memory";
    }
}

TEST_F(ShortMemory, AThreadWithoutItEndsTheRecording) {
    Open();
    ASSERT_TRUE(Driver->StartRecord());
    StopWhole();
    EngineState& engine = State().Engine;
    engine.Busy = true;
    FailingAllocation = 1;
    AcquisitionThread(&engine);
    EXPECT_EQ(FailingAllocation, 0);
    EXPECT_FALSE(engine.Busy);
}

}  // namespace
}  // namespace corvane
