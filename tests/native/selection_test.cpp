// Finding the crates that can serve the driver.
#include "selection/mQuorn.h"
#include "selection/name_pattern.h"
#include "tests/native/driver_fixture.h"

namespace corvane {
namespace {

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
    EXPECT_EQ(search.CrateList[0].Serial, "BOTH");
    EXPECT_EQ(search.CrateList[0].Address, "127.0.0.1");
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

}  // namespace
}  // namespace corvane
