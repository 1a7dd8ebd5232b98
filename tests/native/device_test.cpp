// Opening a device, what it tells, and its single readings.
#include <gtest/gtest.h>

#include "tests/native/driver_fixture.h"

namespace corvane {
namespace {

using DeviceTest = DriverFixture;

TEST_F(DeviceTest, OpeningFailuresNameTheirReason) {
    const std::string noCrates = Server("127.0.0.1"), noServer = Server("10.0.0.1");
    const std::string crate = SequenceCrate({3, 5}, "1.0");
    const std::tuple<std::string, std::string, std::string> cases[] = {
        {noCrates, "", ""},
        {noServer, "", "Connect LTR and run LTR-Server!"},
        {crate, "call = \"LTR_GetCrates\"\nerror = -31", "Connect LTR and run LTR-Server!"},
        {crate, "call = \"LTR27_Open\"\nerror = -7", "Error '-7':\r\nThe connection is not open"},
        {crate, "call = \"LTR27_GetDescription\"\nerror = -35", "Error '-35':\r\n"},
        {crate, "call = \"LTR27_GetConfig\"\nerror = -33", "Error '-33':\r\n"},
        {crate, "call = \"LTR27_GetDescription\"\nafter = 1\nslot = 5\nerror = -34", ""},
    };
    for (const auto& [scenario, fault, reason] : cases) {
        Configure(scenario);
        if (!fault.empty()) AddFault(fault);
        const bool oneModuleLeft = fault.find("slot") != std::string::npos;
        EXPECT_EQ(Driver->Test(), oneModuleLeft) << fault;
        EXPECT_EQ(std::tuple(Driver->Detected(), Driver->BasePort(), Driver->ChannelsCount()),
                  std::tuple(oneModuleLeft, oneModuleLeft ? -1 : 0, 16));
        const std::string error = Driver->LastError();
        EXPECT_TRUE(reason.empty() ? error.empty() : error.starts_with(reason)) << error;
        EXPECT_EQ(LtrSim_OpenConnections(), oneModuleLeft);
        LtrSim_ClearFaults();  // the crate comes back: the next try opens it
        EXPECT_EQ(Driver->Test(), scenario == crate);
    }
}

TEST_F(DeviceTest, TheFirstTwoModulesThatOpenAreUsed) {
    Configure(SequenceCrate({2, 7, 9, 12}, "1.0"));
    AddFault("call = \"LTR27_Open\"\nslot = 2\nerror = -1");
    ASSERT_TRUE(Driver->Test());
    EXPECT_EQ(Driver->ChannelsCount(), 32);
    EXPECT_EQ(Driver->ChannelName(0) + " " + Driver->ChannelName(16), "07_1-1_SEQ 09_1-1_SEQ");
    EXPECT_EQ(Driver->ChannelUnitName(3) + Driver->ChannelUnitName(-1), "V");
    EXPECT_EQ(Driver->ChannelUnitScale(32), 0);
    EXPECT_EQ(LtrSim_OpenConnections(), 2);
    EXPECT_EQ(LtrSim_Calls("LTR27_ADCStop"), 2);  // whoever had them before may have left them running
}

TEST_F(DeviceTest, ObjectsOfOneThreadShareOneDevice) {
    ASSERT_TRUE(Driver->Test());
    auto second = std::make_unique<DriverObject>();
    EXPECT_TRUE(second->Detected());
    second->SetRate(400);
    EXPECT_FLOAT_EQ(Driver->Rate(), 1000.0f / 3);
    Driver.reset();
    EXPECT_EQ(LtrSim_OpenConnections(), 2);
    EXPECT_TRUE(second->Detected());
    std::thread([] { EXPECT_FALSE(DriverObject().Detected()); }).join();  // another thread, another state
    std::thread([&] { second.reset(); }).join();                          // released on the wrong thread
    EXPECT_EQ(LtrSim_OpenConnections(), 0);
    EXPECT_FALSE(DriverObject().Detected());
}

TEST_F(DeviceTest, DescriptionsTellTheBoardAndTheCrate) {
    ASSERT_TRUE(Driver->Test());
    DriverState& state = State();
    EXPECT_EQ(state.Engine.Modules[0].Info,
              "Board: LTR27\r\nBoard SN: CRATE1-3\r\nFirmware: v1.2.3.4\r\nCrate Slot: 3");
    EXPECT_EQ(state.Crate.Info, "Crate: LTR030\r\nCrate SN: CRATE1\r\nCrate Port: USB\r\nCrate IP: 127.0.0.1");
    EXPECT_EQ(state.Engine.Modules[1].Mezzanines[7].Top, 1);
    const MezzanineInfo& fitted = state.Engine.Modules[1].Mezzanines[0];
    EXPECT_EQ(fitted.Name + ' ' + fitted.Serial + ' ' + fitted.Revision, "SEQ 5-1 A.0");
    EXPECT_EQ(state.Engine.Modules[1].Mezzanines[7].Revision, "");
    const TLTR27& handle = state.Engine.Modules[0].Handle;
    EXPECT_EQ(TLTR27API::Revision(handle) + TLTR27API::ProcessorName(handle), "AATMEGA8515");
    EXPECT_EQ(TLTR27API::ClockRate(handle), 15000000);
    EXPECT_EQ(handle.FrequencyDivisor, 99);  // of 10 Hz
}

TEST_F(DeviceTest, WithoutAWindowACrateIsChosenByItsSerialNumber) {
    Configure(Server("127.0.0.1") + Crate("ONE", {3}) + Crate("TWO", {3, 5}) + Server("10.0.0.1"));
    Driver->SetInteractive(false);
    // Serial number, server, what the driver says.
    const std::tuple<const char*, const char*, const char*> cases[] = {
        {"", "", "Several crates were found; one has to be chosen by its serial number: \"ONE\", \"TWO\"."},
        {"THREE", "", "There is no crate with the serial number \"THREE\". Found: \"ONE\", \"TWO\"."},
        {"TWO", "10.0.0.1", "There is no crate with the serial number \"TWO\". None was found."},
        {"TWO", "127.0.0.1", ""}};
    for (const auto& [serial, server, error] : cases) {
        Driver->SetCrateSerial(serial);
        EXPECT_TRUE(Driver->SetServer(server) && !Driver->SetServer("10.0.0") && !Driver->SetServer("10.0.0.256"));
        EXPECT_EQ(Driver->CrateSerial() + Driver->Server(), std::string(serial) + server);
        EXPECT_EQ(Driver->CrateInfo() + Driver->ModuleInfo(0), "");
        EXPECT_EQ(Driver->Test(), *error == '\0');
        EXPECT_EQ(Driver->LastError(), error);
    }
    EXPECT_EQ(Driver->ModulesCount(), 2);
    EXPECT_TRUE(Driver->ModuleInfo(1).ends_with("Slot: 5") && Driver->ModuleInfo(2).empty() &&
                Driver->ModuleInfo(-1).empty() && Driver->CrateInfo().starts_with("Crate: LTR"));
    EXPECT_FALSE(Driver->Interactive() || Driver->ShowSetting());
}

TEST_F(DeviceTest, SingleReadingsAreFreshEvery400Milliseconds) {
    ASSERT_TRUE(Driver->Test());
    Select({0, 14, 16});
    std::this_thread::sleep_for(std::chrono::milliseconds(200));
    EXPECT_EQ(Driver->GetChannel(24), 0);  // so soon after opening nothing was read yet
    std::this_thread::sleep_for(std::chrono::milliseconds(210));
    const int before = LtrSim_Calls("LTR27_Recv");
    // The first kadr of a fresh start has number 0; an empty position and a missing channel give 0.
    EXPECT_EQ(Driver->GetChannel(24), -16384);
    EXPECT_EQ(Driver->GetKadr(), (std::vector<int16_t>{-16384, 0, -16384}));
    EXPECT_TRUE(Driver->GetChannel(-1) == 0 && Driver->GetChannel(32) == 0);
    EXPECT_EQ(LtrSim_Calls("LTR27_Recv"), before + 2);
    EXPECT_EQ(LtrSim_RunningModules(), 0);
    Driver->SetRate(500);
    ASSERT_TRUE(Driver->StartRecord());
    std::this_thread::sleep_for(std::chrono::milliseconds(410));
    const int stops = LtrSim_Calls("LTR27_ADCStop");
    EXPECT_EQ(Driver->GetKadr(), (std::vector<int16_t>{0, 0, 0}));  // the modules belong to the recording
    EXPECT_EQ(Driver->GetChannel(0), 0);
    EXPECT_EQ(LtrSim_Calls("LTR27_ADCStop"), stops);
    StopWhole();
    AddFault("call = \"LTR27_Recv\"\nslot = 3\nshort = 8");  // half a kadr is no reading
    AddFault("call = \"LTR27_Recv\"\nstall = true");         // and a silent module no reason to wait long
    const int received = LtrSim_Calls("LTR27_Recv");
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(Driver->GetKadr(), (std::vector<int16_t>{-16384, 0, -16384}));
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(400));
    EXPECT_EQ(LtrSim_Calls("LTR27_Recv"), received + 2);
}

}  // namespace
}  // namespace corvane
