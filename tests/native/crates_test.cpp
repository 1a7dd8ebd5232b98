// The border to the vendor libraries, and finding the crates that can serve the driver.
#include "hardware/TLTRAPI.h"

#include <filesystem>
#include <fstream>

#include "hardware/vendor_text.h"
#include "platform/component.h"
#include "selection/mQuorn.h"
#include "selection/name_pattern.h"
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
    const auto crate = [&](int i) {
        return api.CrateSerial(i) + ' ' + api.CrateTypeText(i) + ' ' + api.CrateInterfaceText(i);
    };
    EXPECT_EQ(crate(0) + ", " + crate(1), "FIRST LTR031 Ethernet, THIRD LTR0?? USB");
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
    using Marking = std::tuple<int32_t, int32_t, int32_t, int32_t, int32_t>;
    const Marking cases[] = {{1, 5, 0, 0, 0}, {2, 5, 6, 0, 0xFFFF}, {3, 5, 0, 6, 0xFFFF}, {4, 0, 0, 0, 0},
                             {5, 1, 0, 0, 0}, {6, 2, 0, 0, 0},      {7, 3, 0, 0, 0},      {8, 4, 0, 0, 0},
                             {0, 0, 0, 0, 0}, {9, 0, 0, 0, 0}};
    TLTRAPI api;
    for (const Marking& expected : cases) {
        const int32_t mode = std::get<0>(expected);
        ASSERT_EQ(LtrSim_Configure(SequenceCrate({3}, "1.0").c_str()), 0);
        uint32_t mark = 0xDEADBEEF;
        EXPECT_TRUE(api.MakeStartMark(0x7F000001, "CRATE1", mode, mark));
        EXPECT_NE(mark, 0xDEADBEEF);
        EXPECT_EQ(Marking(mode, LtrSim_LastMarkMode(), LtrSim_LastConfigWord(4), LtrSim_LastConfigWord(5),
                          LtrSim_LastConfigWord(6)),
                  expected);
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

TEST(NamePattern, WildcardsMatchWholeNames) {
    const std::tuple<const char*, const char*, bool> cases[] = {
        {"LTR27", "LTR27", true},      {"LTR27", "ltr27", false},     {"LTR27", "LTR2", false},
        {"LTR27", "LTR2?", true},      {"LTR2", "LTR2?", false},      {"LTR27", "LTR##", true},
        {"LTR2x", "LTR##", false},     {"LTR27", "*", true},          {"", "*", true},
        {"LTR27", "L*2*7", true},      {"LTR27", "L*2*8", false},     {"LTR27", "LTR2[5-7]", true},
        {"LTR24", "LTR2[5-7]", false}, {"LTR24", "LTR2[!5-7]", true}, {"LTR27", "LTR2[!5-7]", false},
        {"LTR27", "LTR2[7", false},    {"LTR27", "[KL]TR27", true},   {"LTR-", "LTR[a-]", true}};
    for (const auto& [name, pattern, matches] : cases) {
        EXPECT_EQ(MatchesPattern(name, pattern), matches) << name << " " << pattern;
    }
    const std::string hostile = std::string(40, '*') + "b";
    EXPECT_FALSE(MatchesPattern(std::string(20000, 'a'), hostile));
}

TEST(Enumeration, ListsCratesWithMatchingModulesOnly) {
    const std::string other = "[[server.crate.module]]\nid = \"LTR11\"\nslot = 1\n";
    const std::string crates =
        Server("127.0.0.1") + Crate("NONE", {}) + other + Crate("BOTH", {2, 5}) + other + Server("10.0.0.1");
    ASSERT_EQ(LtrSim_Configure(crates.c_str()), 0) << LtrSim_Message();
    CrateSearch search;
    std::string lastError;
    EXPECT_EQ(FindCrates(search, "LTR27", "LTR27", lastError), 1);
    ASSERT_EQ(search.CrateList.size(), 1u);
    EXPECT_EQ(search.CrateList[0].Serial + search.CrateList[0].Address, "BOTH127.0.0.1");
    ASSERT_EQ(search.CrateList[0].Modules.size(), 2u);
    EXPECT_EQ(search.CrateList[0].Modules[1].Slot, 5);
    EXPECT_EQ(EnumerateCrates(search, 0x7F000001, ""), 2);
    EXPECT_EQ(search.CrateList[1].Modules.size(), 3u);
    // A positive code is no count of crates, and no failed query either.
    ASSERT_EQ(LtrSim_AddFault("call = \"LTR_GetCrates\"\nerror = 2147483647"), 0) << LtrSim_Message();
    EXPECT_EQ(FindCrates(search, "LTR27", "LTR27", lastError), 0);
    EXPECT_EQ(search.CrateList.size(), 0u);
    LtrSim_ClearFaults();
    EXPECT_EQ(EnumerateCrates(search, 0x0A000001, ""), 0);
    EXPECT_EQ(EnumerateCrates(search, 0x0A000002, ""), -1);
    EXPECT_EQ(lastError, "");
}

TEST(HelpFile, IsTheVendorsBesideTheComponentOrElseTheGuide) {
    const std::filesystem::path folder = platform::ComponentFolder(), guide = folder / "guide" / "guide.html";
    const std::pair<std::filesystem::path, std::filesystem::path> appearing[] = {
        {folder / "guide.html", "as it was"},
        {folder / "guide" / "guide.html.old", "as it was"},
        {guide, guide},
        {folder / "LCardTest.chm", folder / "LCardTest.chm"}};
    for (const auto& [file, expected] : appearing) {
        create_directories(file.parent_path());
        std::ofstream(file) << "help";
        std::string found = "as it was";
        SetHelpFile(found);
        EXPECT_EQ(found, expected) << file;
    }
    for (const auto& [file, expected] : appearing) remove(file);
    std::filesystem::remove(guide.parent_path());
}

}  // namespace
}  // namespace corvane
