#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <cstring>
#include <filesystem>
#include <fstream>

#include "hardware/vendor_imports.h"
#include "simulator/error_codes.h"
#include "tests/native/driver_fixture.h"

using namespace corvane;

namespace {

constexpr uint32_t Local = 0x7F000001;

void Configure(const std::string& toml) {
    ASSERT_EQ(LtrSim_Configure(toml.c_str()), 0) << LtrSim_Message();
}

// A module opened and, at 1000 Hz, started.
struct Board {
    explicit Board(uint32_t slot, const char* crate = "CRATE1") {
        Record.Size = sizeof(Record);
        EXPECT_EQ(LTR27_Init(&Record), 0);
        EXPECT_EQ(LTR27_Open(&Record, Local, ModulePort, crate, slot), 0);
        EXPECT_EQ(LTR27_GetConfig(&Record), 0);
        EXPECT_EQ(LTR27_GetDescription(&Record, 0x1FF), 0);
        EXPECT_EQ(LTR27_ADCStart(&Record), 0);
    }
    ~Board() { LTR27_Close(&Record); }
    Board(const Board&) = delete;

    int32_t Receive(uint32_t count, uint32_t timeout = 0) {
        Words.resize(count);
        Marks.resize(count);
        return LTR27_Recv(&Record, Words.data(), Marks.data(), count, timeout);
    }
    int32_t Process() {
        uint32_t size = static_cast<uint32_t>(Words.size());
        Values.resize(size);
        return LTR27_ProcessData(&Record, Words.data(), Values.data(), &size, 1, 0);
    }

    TLTR27 Record{};
    std::vector<uint32_t> Words;
    std::vector<uint32_t> Marks;
    std::vector<double> Values;
};

// An open connection.
struct Link {
    explicit Link(const char* crate = "") {  // empty: the list of crates
        LTR_Init(&Record);
        std::memcpy(Record.CrateSerial, crate, std::strlen(crate));
        EXPECT_EQ(LTR_Open(&Record), 0);
    }
    ~Link() { LTR_Close(&Record); }
    Link(const Link&) = delete;

    CrateConnection Record{};
};

TEST(Simulator, AModuleKeepsItsConfigurationAndTextsFillTheirFields) {
    const std::string serial = "CRATE-OF-16-CHRS";
    std::string toml = SequenceCrate({3}, "0");
    toml.replace(toml.find("CRATE1"), 6, serial).replace(toml.find("SEQ"), 3, "MEZZANINE-16-CHR");
    Configure(toml);
    Board board(3, serial.c_str());
    char serials[MaxCrates][VendorTextSize];
    Link list;
    EXPECT_EQ(LTR_GetCrates(&list.Record, reinterpret_cast<uint8_t(*)[VendorTextSize]>(serials)), 0);
    EXPECT_EQ(std::string(serials[0], VendorTextSize), serial);
    EXPECT_EQ(std::string(board.Record.Description[0].Name, VendorTextSize), "MEZZANINE-16-CHR");

    const MezzanineConfig given = {{}, {'X'}, 3, 4, {5, 6, 7, 8}};
    LTR27_ADCStop(&board.Record);
    board.Record.FrequencyDivisor = 9;
    board.Record.Config[2] = given;
    ASSERT_EQ(LTR27_SetConfig(&board.Record), 0);
    board.Record.FrequencyDivisor = 0;
    board.Record.Config[2] = {};
    ASSERT_EQ(LTR27_GetConfig(&board.Record), 0);
    EXPECT_EQ(board.Record.FrequencyDivisor, 9);
    using Bytes = std::array<char, sizeof given>;
    EXPECT_EQ(std::bit_cast<Bytes>(board.Record.Config[2]), std::bit_cast<Bytes>(given));
}

TEST(Simulator, ARequestForAStartMarkTakesThePlaceOfAnEarlierOne) {
    Configure(SequenceCrate({3}, "1.0", "start_mark_after = 0.3"));
    constexpr int32_t WaitForEdge = 1;
    Board board(3);
    Link link("CRATE1");
    EXPECT_EQ(LTR_MakeStartMark(&link.Record, WaitForEdge), 0);
    LTR27_ADCStop(&board.Record);  // before the mark came
    LTR27_ADCStart(&board.Record);
    EXPECT_EQ(LTR_MakeStartMark(&link.Record, WaitForEdge), 0);
    ASSERT_EQ(board.Receive(16 * 600, 20000), 16 * 600);
    EXPECT_EQ(board.Marks.front() >> 16, 0u);
    EXPECT_EQ(board.Marks.back() >> 16, 1u);
    EXPECT_EQ(Link("CRATE1").Record.TimeMark >> 16, 1u);
}

TEST(Simulator, EveryViolationIsCounted) {
    Configure(SequenceCrate({3, 5}, "0"));
    Board board(3);
    board.Receive(64);
    TLTR27 closed{}, wrongSize{};
    closed.Size = sizeof(closed);
    wrongSize.Size = 8;
    CrateConnection link{};
    uint8_t serials[MaxCrates][VendorTextSize];
    const std::vector<std::function<int32_t()>> bad = {
        [&] { return LTR27_Init(&wrongSize); },
        [&] { return LTR27_Init(&board.Record); },
        [&] { return LTR27_Open(&closed, Local, ModulePort, "CRATE1", 3); },
        [&] { return LTR27_ADCStop(&closed); },
        [&] { return LTR27_GetConfig(nullptr); },
        [&] { return LTR27_Recv(&board.Record, nullptr, nullptr, 16, 0); },
        [&] { return board.Words.erase(board.Words.begin()), board.Process(); },
        [&] { return board.Receive(64), board.Words.erase(board.Words.begin() + 16), board.Process(); },
        [&] { return LTR_Open(&link); },
        [&] { return LTR_GetCrates(&link, serials); },
    };
    for (size_t k = 0; k < bad.size(); k++) {
        EXPECT_LT(bad[k](), 0) << k;
        EXPECT_EQ(LtrSim_Violations(), static_cast<int32_t>(k + 1)) << LtrSim_Message();
    }
    EXPECT_STREQ(LtrSim_Message(), "LTR27_Init: wrong record size");
    LTR27_Close(&closed);
    LTR_Close(&link);
    EXPECT_EQ(LtrSim_Violations(), static_cast<int32_t>(bad.size())) << "closing what is not open is harmless";
}

TEST(Simulator, TwoThreadsInOneRecordAreSeenAndAReplacedScenarioEndsWaits) {
    Configure(SequenceCrate({3, 5}, "0.001"));
    Board board(3);
    TLTR27 copy = board.Record;
    // Which of the two comes first is left open: the other one is the violation.
    std::thread receiver([&] {
        while (board.Receive(64, 30000) == ltrsim::RecordBusy) continue;
    });
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (LTR27_ADCStop(&copy) != ltrsim::RecordBusy && std::chrono::steady_clock::now() < end) continue;
    EXPECT_GE(LtrSim_Violations(), 1);
    Configure(SequenceCrate({3, 5}, "0"));
    receiver.join();
    EXPECT_LT(std::chrono::steady_clock::now(), end);
    EXPECT_EQ(LTR27_ADCStop(&copy), ltrsim::NotOpen);
}

// With one crate to connect to, no dialog is needed: a command is enough.
TEST(Simulator, TheExamplesAreReadAndTheOneWithFaultsIsOpenedAtOnce) {
    for (const auto& entry : std::filesystem::directory_iterator(SCENARIOS)) {
        std::ifstream file(entry.path());
        Configure(std::string(std::istreambuf_iterator<char>(file), {}));
        EXPECT_TRUE(entry.path().filename() != "faults.toml" || DriverObject().Test());
    }
    EXPECT_GE(std::distance(std::filesystem::directory_iterator(SCENARIOS), {}), 9);
}

TEST(Simulator, MistakesInTheScenarioNameTheirLine) {
    const std::string crate = "[[server]]\naddress = '1.2.3.4'\n[[server.crate]]\nserial = 'C'\n";
    const std::string module = crate + "[[server.crate.module]]\nslot = 2\nid = 'LTR27'\n";
    const std::pair<std::string, const char*> cases[] = {
        {"\nspeed = -1", "scenario:2: key 'speed' must be a number from 0 to 1000"},
        {"[[server]]\n", "scenario:1: key 'address' is missing"},
        {crate + "typ = 'LTR030'", "scenario:5: key 'typ' is not known here"},
        {crate + "[[server.crate]]\nserial = 'C'", "scenario:6: key 'serial' is used twice"},
        {module + "[[server.crate.module]]\nslot = 2\nid = 'LTR11'", "scenario:9: key 'slot' is used twice"},
        {"[[fault]]\nerror = -1\nstall = true", "scenario:3: key 'stall' can't stand beside 'error'"},
        {"[[fault]]\ncall = 'LTR27_Recv'\nsize = 3", "scenario:3: key 'size' is not for LTR27_Recv"},
        {"[[fault]]\ncall = 'LTR27_Receive'\nerror = -1", "scenario:2: key 'call'"},
        {"[[fault]]\ncall = 'LTR27_Init'\nslot = 3\nerror = -1", "scenario:3: key 'slot' is not passed"},
        {"[[fault]]\ncall = 'LTR_Init'\ncrate = 'C'\nerror = -1", "scenario:3: key 'crate' is not passed"},
        {"[[fault]]\ncall = 'LTR_Open'\nslot = 3\nerror = -1", "scenario:3: key 'slot' is not passed"},
        {"[[server]]\naddress = '1.2.3.4'\n[[server.crate]]\nserial = 'CRATE-OF-17-CHARS'",
         "scenario:4: key 'serial' must have 1 to 16"},
        {"# я\nspeed = \"я\\\"\"\nя = 1", "scenario:3: a letter that only"},
    };
    Configure(SequenceCrate({3, 5}, "0"));
    for (const auto& [toml, message] : cases) {
        EXPECT_EQ(LtrSim_Configure(toml.c_str()), -1) << toml;
        EXPECT_TRUE(std::string(LtrSim_Message()).starts_with(message)) << LtrSim_Message();
    }
    EXPECT_EQ(Board(3).Receive(16), 16) << "the old scenario stays";
}

}  // namespace
