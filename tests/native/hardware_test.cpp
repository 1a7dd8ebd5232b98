// The border to the vendor libraries.
#include "hardware/TLTRAPI.h"
#include "hardware/vendor_text.h"
#include "tests/native/driver_fixture.h"

namespace corvane {
namespace {

TEST(VendorText, EndsAtTheFirstControlByteAfterItBeganAndErrorsAfter256) {
    using namespace std::string_literals;
    const std::pair<std::string, std::string> cases[] = {
        {"\0\0H27\0"s, "H27"}, {"\1A\nB", "A"}, {"\0\0"s, ""}, {"\xCE\xEC", "Ом"}};
    for (const auto& [bytes, text] : cases) EXPECT_EQ(BytesToText(bytes), text);
    EXPECT_EQ(VendorErrorText(-1, nullptr), "");
    const std::string endless(1000, 'x');
    EXPECT_EQ(VendorErrorText(-2, endless.c_str()), "Error '-2':\r\n" + std::string(256, 'x'));
}

TEST(TLTRAPI, ListsCratesAndToleratesIndexesOutside) {
    const std::string crates =
        Server("127.0.0.1") +
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
    const std::tuple<int32_t, int32_t, uint16_t, const char*> modules[] = {
        {0, 3, 0x1B1B, "LTR27"}, {0, 15, 0x0C0C, "LTR12"}, {0, 0, 0, "<empty>"},
        {0, 16, 0, ""},          {0, -1, 0, ""},           {2, 3, 0, ""},
        {-1, 3, 0, ""}};
    for (const auto& [index, slot, id, name] : modules) {
        EXPECT_EQ(api.ModuleId(index, slot), id);
        EXPECT_EQ(api.ModuleTypeText(index, slot), name);
    }
    EXPECT_EQ(api.CrateSerial(2), "");
    EXPECT_LT(api.GetCrates(0x0A000001), 0);
    ASSERT_EQ(LtrSim_AddFault("call = \"LTR_GetCrates\"\nerror = 2"), 0) << LtrSim_Message();
    EXPECT_EQ(api.GetCrates(0x7F000001), 2) << "the library's code, though no negative one";
    EXPECT_EQ(api.CrateSerial(0), "");
    EXPECT_EQ(LtrSim_OpenConnections(), 0);
}

TEST(TLTRAPI, StartMarkModesBecomeTheLibrarysOwn) {
    // The driver's mode, the library's, three words of the configuration.
    const std::tuple<int32_t, int32_t, int32_t, int32_t, int32_t> cases[] = {
        {1, 5, 0, 0, 0}, {2, 5, 6, 0, 0xFFFF}, {3, 5, 0, 6, 0xFFFF}, {4, 0, 0, 0, 0}, {5, 1, 0, 0, 0},
        {6, 2, 0, 0, 0}, {7, 3, 0, 0, 0},      {8, 4, 0, 0, 0},      {0, 0, 0, 0, 0}, {9, 0, 0, 0, 0}};
    TLTRAPI api;
    for (const auto& [mode, markMode, word8, word10, word12] : cases) {
        ASSERT_EQ(LtrSim_Configure(SequenceCrate({3}, "1.0").c_str()), 0);
        uint32_t mark = 0xDEADBEEF;
        EXPECT_TRUE(api.MakeStartMark(0x7F000001, "CRATE1", mode, mark));
        EXPECT_NE(mark, 0xDEADBEEF);
        EXPECT_EQ(LtrSim_LastMarkMode(), markMode);
        EXPECT_EQ(LtrSim_LastConfigWord(4), word8);
        EXPECT_EQ(LtrSim_LastConfigWord(5), word10);
        EXPECT_EQ(LtrSim_LastConfigWord(6), word12);
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
