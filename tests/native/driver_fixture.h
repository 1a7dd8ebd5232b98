// A driver on a simulated crate, for tests that go the whole road.
#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "driver/driver_object.h"
#include "driver/lifecycle.h"
#include "platform/portable/test_hooks.h"
#include "simulator/control.h"
#include "simulator/sequence.h"
#include "standins/registry_hooks.h"

namespace corvane {

class DriverFixture : public testing::Test {
protected:
    void SetUp() override {
        platform::ClearRegistry();
        Configure(SequenceCrate({3, 5}, "1.0"));
    }

    void TearDown() override {
        Driver.reset();
        platform::SkipSleeps = false;
        platform::FailThreadCreation = false;
        EXPECT_EQ(LtrSim_OpenConnections(), 0);
        EXPECT_EQ(LtrSim_RunningModules(), 0);
        EXPECT_EQ(LtrSim_Violations(), 0) << LtrSim_Message();
    }

    void Configure(const std::string& toml) {
        Driver.reset();
        ASSERT_EQ(LtrSim_Configure(toml.c_str()), 0) << LtrSim_Message();
        Driver = std::make_unique<DriverObject>();
    }

    void AddFault(const std::string& toml) { ASSERT_EQ(LtrSim_AddFault(toml.c_str()), 0) << LtrSim_Message(); }

    // What the driver works on, as long as it lives.
    static DriverState& State() {
        DriverState& state = AttachObject();
        DetachObject(state);
        return state;
    }

    void Select(const std::vector<int16_t>& channels) { Driver->SetInputChannels(channels); }

    // Polls until the condition holds; false after ten seconds.
    static bool Eventually(const std::function<bool()>& condition) {
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
        while (!condition()) {
            if (std::chrono::steady_clock::now() > end) return false;
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        return true;
    }

    // Waits for `kadrs` kadrs and takes them; empty when they don't come.
    std::vector<int16_t> Take(int32_t kadrs) {
        if (!Eventually([&] { return Driver->InputCountKadrs() >= kadrs; })) return {};
        int32_t count = kadrs * Driver->InputCountChannels();
        int32_t remaining = 0;
        std::vector<int16_t> samples(static_cast<size_t>(count));
        Driver->GetData(samples.data(), count, remaining);
        return samples;
    }

    // Stops and waits until a new recording would be allowed.
    void StopWhole() {
        Driver->StopRecord();
        EXPECT_FALSE(Driver->Busy());
        EXPECT_TRUE(Eventually([] { return LtrSim_RunningModules() == 0; }));
    }

    std::unique_ptr<DriverObject> Driver;
};

// Of this process; a recording's thread must not outlive it.
#ifdef _WIN32
int Threads();
#else
inline auto Threads() {
    return std::distance(std::filesystem::directory_iterator("/proc/self/task"), {});
}
#endif

// Kadr number that an even channel's sample stands for, modulo 32768.
inline int32_t KadrNumber(int16_t sample) {
    return sample + 16384;
}

}  // namespace corvane
