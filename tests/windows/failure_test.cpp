// What the host is told, and what is left, when the modules fail.
#include "tests/windows/recording_host.h"

namespace corvane::test {
namespace {

using Failures = DriverTest;

constexpr wchar_t NotOpenText[] = L"Error '-7':\r\nThe connection is not open";

std::string FaultOf(const std::string& call) {
    return "call = \"" + call + "\"\nerror = -7\n";
}

TEST_F(Failures, OfOpeningReachLastError) {
    for (const char* call : {"LTR27_Open", "LTR27_GetConfig", "LTR27_GetDescription"}) {
        ASSERT_EQ(0, LtrSim_AddFault(FaultOf(call).c_str())) << LtrSim_Message();
        EXPECT_FALSE(True(Driver.Get(), &IADC3::Test)) << call;
        EXPECT_EQ(NotOpenText, LastError(Driver.Get())) << call;
        EXPECT_EQ(0, Read(Driver.Get(), &IADC3::get_BasePort)) << call;
        EXPECT_EQ(0, LtrSim_OpenConnections()) << call;
        LtrSim_ClearFaults();
    }
    EXPECT_TRUE(True(Driver.Get(), &IADC3::Test));
    EXPECT_EQ(L"", LastError(Driver.Get()));
    EXPECT_EQ(-1, Read(Driver.Get(), &IADC3::get_BasePort));
}

TEST_F(Failures, OfOneModuleLeaveTheOther) {
    ASSERT_EQ(0, LtrSim_AddFault("call = \"LTR27_GetConfig\"\nslot = 1\nerror = -7\n")) << LtrSim_Message();
    EXPECT_TRUE(True(Driver.Get(), &IADC3::Test));
    EXPECT_EQ(16, Read(Driver.Get(), &IADC3::get_ChannelsCount));
}

TEST_F(Failures, OfStartingReachLastErrorAndStopEverything) {
    ASSERT_TRUE(OpenSequence(2));
    for (const char* call : {"LTR27_SetConfig", "LTR27_ADCStart"}) {
        ASSERT_EQ(0, LtrSim_AddFault((FaultOf(call) + "slot = 2\n").c_str())) << LtrSim_Message();
        EXPECT_FALSE(Start(1000)) << call;
        EXPECT_EQ(NotOpenText, LastError(Driver.Get())) << call;
        EXPECT_FALSE(True(Driver.Get(), &IADC3::get_Busy)) << call;
        EXPECT_EQ(0, LtrSim_RunningModules()) << call;
        LtrSim_ClearFaults();
    }
    EXPECT_TRUE(Start(1000));
    EXPECT_EQ(L"", LastError(Driver.Get()));
}

TEST_F(Failures, UnpluggedModuleDoesNotEndTheRecording) {
    ASSERT_TRUE(OpenSequence(2));
    ASSERT_TRUE(Start(1000));
    ASSERT_TRUE(WaitForKadrs(256));
    ASSERT_EQ(0, LtrSim_AddFault("slot = 1\nunplug = true\n")) << LtrSim_Message();
    EXPECT_TRUE(WaitForKadrs(Read(Driver.Get(), &IADC3::get_InputCountKadrs) + 1024));
    EXPECT_TRUE(True(Driver.Get(), &IADC3::get_Busy));
    const DWORD start = GetTickCount();
    EXPECT_EQ(S_OK, Driver->StopRecord());
    EXPECT_LT(GetTickCount() - start, 1000u);
    EXPECT_FALSE(True(Driver.Get(), &IADC3::get_Busy));
}

// The thread sits in a receive that takes its whole time-out; the host must neither wait for it nor start beside it.
TEST_F(Failures, SilentModuleHoldsOnlyTheNextStart) {
    ASSERT_TRUE(OpenSequence(1));
    ASSERT_TRUE(Start(1000));
    ASSERT_TRUE(WaitForKadrs(64));
    ASSERT_EQ(0, LtrSim_AddFault("call = \"LTR27_Recv\"\nstall = true\n")) << LtrSim_Message();
    const int32_t calls = LtrSim_Calls("LTR27_Recv");
    ASSERT_TRUE(WaitFor([&] { return LtrSim_Calls("LTR27_Recv") > calls + 1; }, 5000));
    const DWORD start = GetTickCount();
    EXPECT_EQ(S_OK, Driver->StopRecord());
    EXPECT_LT(GetTickCount() - start, 400u) << "two block periods are 128 ms";
    EXPECT_FALSE(Start(1000));
    EXPECT_EQ(L"Please wait end of previous thread of recording!", LastError(Driver.Get()));
    LtrSim_ClearFaults();
    EXPECT_TRUE(WaitFor([&] { return Start(1000); }, 3000));
}

}  // namespace
}  // namespace corvane::test
