#include "tests/windows/recording_host.h"

namespace corvane::test {

std::string SequenceScenario(int modules) {
    return SequenceCrate(modules == 1 ? std::vector{1} : std::vector{1, 2}, "0");
}

void DriverTest::SetUp() {
    ASSERT_EQ(0, LtrSim_Configure(SequenceScenario(2).c_str())) << LtrSim_Message();
    Driver = CreateDriver();
    ASSERT_NE(nullptr, Driver);
}

void DriverTest::TearDown() {
    LtrSim_ClearFaults();
    Driver.Reset();
    EXPECT_EQ(0, LtrSim_RunningModules());
    EXPECT_EQ(0, LtrSim_OpenConnections());
    EXPECT_EQ(0, LtrSim_Violations()) << LtrSim_Message();
}

bool DriverTest::OpenSequence(int modules) {
    EXPECT_EQ(0, LtrSim_Configure(SequenceScenario(modules).c_str())) << LtrSim_Message();
    if (!True(Driver.Get(), &IADC3::Test)) return false;
    SelectChannels(Driver.Get(), FirstChannels(16 * modules));
    return true;
}

bool DriverTest::Start(float rate) {
    EXPECT_EQ(S_OK, Driver->put_Rate(rate));
    return True(Driver.Get(), &IADC3::StartRecord);
}

bool DriverTest::WaitForKadrs(LONG kadrs) {
    return WaitFor([&] { return Read(Driver.Get(), &IADC3::get_InputCountKadrs) >= kadrs; }, 5000);
}

}  // namespace corvane::test
