#include <gtest/gtest.h>

#include <cstring>

#include "hardware/TLTR27API.h"
#include "hardware/TLTRAPI.h"
#include "hardware/vendor_text.h"
#include "simulator/control.h"
#include "tests/native/driver_fixture.h"

namespace corvane {
namespace {

TEST(VendorText, FieldsEndAtTheFirstControlByteAfterTheyBegan) {
    const struct {
        std::string Bytes, Text;
    } cases[] = {{std::string("LTR27\0\0\0", 8), "LTR27"},
                 {std::string("\0\0H27", 5), "H27"},
                 {std::string("\1A\nB", 4), "A"},
                 {std::string(16, '\0'), ""},
                 {"0123456789ABCDEF", "0123456789ABCDEF"},
                 {"\xCE\xEC", "Ом"},
                 {"", ""}};
    for (const auto& each : cases) EXPECT_EQ(BytesToText(each.Bytes), each.Text);
}

TEST(VendorText, ErrorsCarryTheCodeAndAtMost256Bytes) {
    EXPECT_EQ(VendorErrorText(-1, "no crate"), "Error '-1':\r\nno crate");
    EXPECT_EQ(VendorErrorText(7, ""), "Error '7':\r\n");
    EXPECT_EQ(VendorErrorText(-1, nullptr), "");
    const std::string endless(1000, 'x');
    EXPECT_EQ(VendorErrorText(-2, endless.c_str()), "Error '-2':\r\n" + std::string(256, 'x'));
}

TEST(TLTR27API, PropertiesReadTheRecord) {
    TLTR27 record = {};
    EXPECT_EQ(TLTR27API::FirmwareVersion(record), "0.0.0.0");
    EXPECT_EQ(TLTR27API::ModuleName(record), "");
    std::memcpy(record.ModuleName, "LTR27", 5);
    record.FirmwareVersion = 0x0A000102;
    EXPECT_EQ(TLTR27API::ModuleName(record), "LTR27");
    EXPECT_EQ(TLTR27API::FirmwareVersion(record), "10.0.1.2");
    for (const auto& [clock, expected] : {std::pair{2.5, 2}, {3.5, 4}, {-1e300, INT32_MIN}, {1e300, INT32_MAX}}) {
        record.ClockRate = clock;
        EXPECT_EQ(TLTR27API::ClockRate(record), expected);
    }
}

TEST(TLTR27API, AFailedOpenLeavesTheRecordClosed) {
    ASSERT_EQ(LtrSim_Configure(SequenceCrate({3}, "1.0").c_str()), 0);
    const TLTR27 zero = {};
    TLTR27API api;
    TLTR27 record = {};
    EXPECT_FALSE(api.Open(record, 0x7F000001, "ANOTHER", 3));
    EXPECT_LT(api.LastError(), 0);
    EXPECT_EQ(std::memcmp(&record, &zero, sizeof record), 0);
    EXPECT_NE(api.GetErrorString().find(std::to_string(api.LastError())), std::string::npos);
    // The last of the three steps fails: the connection is given back.
    ASSERT_EQ(LtrSim_AddFault("call = \"LTR27_GetDescription\"\nerror = -77"), 0);
    EXPECT_FALSE(api.Open(record, 0x7F000001, "CRATE1", 3));
    EXPECT_EQ(api.LastError(), -77);
    EXPECT_EQ(LtrSim_OpenConnections(), 0);
    LtrSim_ClearFaults();
    EXPECT_TRUE(api.Open(record, 0x7F000001, "CRATE1", 3));
    EXPECT_EQ(record.Size, 3872u);
    api.Close(record);
    EXPECT_EQ(std::memcmp(&record, &zero, sizeof record), 0);
    EXPECT_EQ(LtrSim_Violations(), 0) << LtrSim_Message();
}

TEST(TLTRAPI, ListsCratesAndToleratesIndexesOutside) {
    const std::string crates =
        "[[server]]\naddress = \"127.0.0.1\"\n"
        "[[server.crate]]\nserial = \"FIRST\"\ntype = \"LTR031\"\ninterface = \"Ethernet\"\nlist_position = 0\n"
        "[[server.crate.module]]\nid = \"LTR27\"\nslot = 4\n[[server.crate.module]]\nid = \"LTR12\"\nslot = 16\n"
        "[[server.crate]]\nserial = \"DEAF\"\nlist_position = 1\n"
        "[[server.crate]]\nserial = \"THIRD\"\nlist_position = 15\n"
        "[[fault]]\ncall = \"LTR_Open\"\ncrate = \"DEAF\"\nerror = -5\n"
        "[[fault]]\ncall = \"LTR_GetCrateInfo\"\ncrate = \"THIRD\"\nerror = -6\n";
    ASSERT_EQ(LtrSim_Configure(crates.c_str()), 0) << LtrSim_Message();
    TLTRAPI api;
    ASSERT_EQ(api.GetCrates(0x7F000001), 2);
    EXPECT_EQ(api.CrateSerial(0), "FIRST");
    EXPECT_EQ(api.CrateTypeText(0), "LTR031");
    EXPECT_EQ(api.CrateInterfaceText(0), "Ethernet");
    EXPECT_EQ(api.CrateSerial(1), "THIRD");
    EXPECT_EQ(api.CrateTypeText(1), "LTR0??");
    EXPECT_EQ(api.CrateInterfaceText(1), "USB");
    const struct {
        int32_t Index, Slot;
        uint16_t Id;
        const char* Name;
    } modules[] = {{0, 3, 0x1B1B, "LTR27"}, {0, 15, 0x0C0C, "LTR12"}, {0, 0, 0, "<empty>"},
                   {0, 16, 0, ""},          {0, -1, 0, ""},           {2, 3, 0, ""},
                   {-1, 3, 0, ""}};
    for (const auto& each : modules) {
        EXPECT_EQ(api.ModuleId(each.Index, each.Slot), each.Id);
        EXPECT_EQ(api.ModuleTypeText(each.Index, each.Slot), each.Name);
    }
    EXPECT_EQ(api.CrateSerial(2), "");
    EXPECT_LT(api.GetCrates(0x0A000001), 0);
    EXPECT_EQ(api.CrateSerial(0), "");
    EXPECT_EQ(LtrSim_OpenConnections(), 0);
}

TEST(TLTRAPI, StartMarkModesBecomeTheLibrarysOwn) {
    const struct {
        int32_t Mode, MarkMode, Word8, Word10, Word12;
    } cases[] = {{1, 5, 0, 0, 0}, {2, 5, 6, 0, 0xFFFF}, {3, 5, 0, 6, 0xFFFF}, {4, 0, 0, 0, 0}, {5, 1, 0, 0, 0},
                 {6, 2, 0, 0, 0}, {7, 3, 0, 0, 0},      {8, 4, 0, 0, 0},      {0, 0, 0, 0, 0}, {9, 0, 0, 0, 0}};
    TLTRAPI api;
    for (const auto& each : cases) {
        ASSERT_EQ(LtrSim_Configure(SequenceCrate({3}, "1.0").c_str()), 0);
        uint32_t mark = 0xDEADBEEF;
        EXPECT_TRUE(api.MakeStartMark(0x7F000001, "CRATE1", each.Mode, mark));
        EXPECT_NE(mark, 0xDEADBEEF);
        EXPECT_EQ(LtrSim_LastMarkMode(), each.MarkMode);
        EXPECT_EQ(LtrSim_LastConfigWord(4), each.Word8);
        EXPECT_EQ(LtrSim_LastConfigWord(5), each.Word10);
        EXPECT_EQ(LtrSim_LastConfigWord(6), each.Word12);
    }
    // Old crates get neither a configuration nor a mark, but still tell theirs.
    ASSERT_EQ(LtrSim_Configure(SequenceCrate({3}, "1.0", "type = \"LTR021\"").c_str()), 0);
    uint32_t mark = 0xDEADBEEF;
    EXPECT_FALSE(api.MakeStartMark(0x7F000001, "CRATE1", 2, mark));
    EXPECT_NE(mark, 0xDEADBEEF);
    EXPECT_EQ(LtrSim_LastMarkMode(), -1);
    EXPECT_EQ(LtrSim_Calls("LTR_Config"), 0);
    EXPECT_FALSE(api.MakeStartMark(0x7F000001, "A-SERIAL-OF-17-CH", 1, mark));
    EXPECT_EQ(LtrSim_OpenConnections(), 0);
    EXPECT_EQ(LtrSim_Violations(), 0) << LtrSim_Message();
}

}  // namespace
}  // namespace corvane
