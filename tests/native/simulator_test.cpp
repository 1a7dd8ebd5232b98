#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "hardware/vendor_imports.h"
#include "simulator/control.h"
#include "simulator/error_codes.h"
#include "simulator/scenario.h"

using namespace corvane;

namespace {

constexpr uint32_t Local = 0x7F000001;

// One crate "C1" whose LTR27 modules in slots 3 and 5 number their kadrs.
std::string Scenario(const std::string& speed, const std::string& crateKeys = "") {
    std::string text = "speed = " + speed + "\n[[server]]\naddress = '127.0.0.1'\n[[server.crate]]\nserial = 'C1'\n";
    text += crateKeys;
    for (const char* slot : {"3", "5"}) {
        text += std::string("\n[[server.crate.module]]\nid = 'LTR27'\nslot = ") + slot +
                "\nmezzanine = [{ position = 1, name = 'N', unit = 'V', bottom = -10, top = 10, "
                "signal = { kind = 'sequence' } }]\n";
    }
    return text;
}

void Configure(const std::string& toml) {
    ASSERT_EQ(LtrSim_Configure(toml.c_str()), 0) << LtrSim_Message();
}

// A module opened and, at 1000 Hz, started.
struct Board {
    explicit Board(uint32_t slot, const char* crate = "C1") {
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
    int32_t Process(int32_t calibrate, int32_t toUnits) {
        uint32_t size = static_cast<uint32_t>(Words.size());
        Values.resize(size);
        return LTR27_ProcessData(&Record, Words.data(), Values.data(), &size, calibrate, toUnits);
    }

    TLTR27 Record{};
    std::vector<uint32_t> Words, Marks;
    std::vector<double> Values;
};

int32_t RequestMark(int32_t mode, uint32_t& timeMark) {
    CrateConnection crate{};
    LTR_Init(&crate);
    crate.CrateSerial[0] = 'C';
    crate.CrateSerial[1] = '1';
    EXPECT_EQ(LTR_Open(&crate), 0);
    timeMark = crate.TimeMark;
    const int32_t code = LTR_MakeStartMark(&crate, mode);
    EXPECT_EQ(LTR_Close(&crate), 0);
    return code;
}

TEST(Simulator, SequenceNumbersEveryKadrWhateverThePieces) {
    Configure(Scenario("0"));
    Board board(3);
    std::vector<uint32_t> all;
    for (const uint32_t count : {100u, 7u, 37u, 16u * 40000u, 16u}) {
        ASSERT_EQ(board.Receive(count), static_cast<int32_t>(count));
        all.insert(all.end(), board.Words.begin(), board.Words.end());
    }
    board.Words.assign(all.begin(), all.begin() + 16 * 40000);
    ASSERT_EQ(board.Process(1, 0), 0);
    for (size_t kadr = 0; kadr < 40000; ++kadr) {
        ASSERT_EQ(board.Values[16 * kadr], static_cast<double>(kadr % 32768));
        ASSERT_EQ(board.Values[16 * kadr + 1], static_cast<double>(kadr / 32768));
    }
    EXPECT_EQ(LtrSim_Violations(), 0);
}

TEST(Simulator, OnlyFactoryCalibrationGivesTheSignal) {
    std::string toml = ltrsim::DefaultScenario;
    Configure(toml.replace(toml.find("speed = 1.0"), 11, "speed = 0"));
    for (const uint32_t slot : {3u, 5u}) {
        Board board(slot, "3T123456");
        ASSERT_EQ(board.Receive(1600), 1600);
        ASSERT_EQ(board.Process(1, 0), 0);
        const std::vector<double> uncalibrated = board.Values;
        for (int k = 0; k < MezzaninePositions; ++k) {
            std::copy_n(board.Record.Description[k].Calibration, 4, board.Record.Config[k].Calibration);
        }
        ASSERT_EQ(board.Process(1, 0), 0);
        int fitted = 0;
        for (size_t w = 0; w < 1600; ++w) {
            const double code = LtrSim_ExpectedCode(static_cast<int32_t>(slot), static_cast<int32_t>(w % 16),
                                                    static_cast<int64_t>(w / 16), 1000);
            const MezzanineDescription& description = board.Record.Description[w % 16 / 2];
            ASSERT_EQ(std::isnan(code), description.Active == 0);
            if (std::isnan(code)) continue;
            ++fitted;
            ASSERT_NEAR(board.Values[w], code, 0.5 * description.Calibration[w % 2 * 2 + 1] + 1e-9) << w;
            ASSERT_GT(std::abs(uncalibrated[w] - code), 5) << w;
        }
        EXPECT_GT(fitted, 500);
    }
    Board board(3, "3T123456");
    EXPECT_STREQ(board.Record.Config[0].Unit, "\xC2");      // В
    EXPECT_STREQ(board.Record.Config[4].Unit, "\xCE\xEC");  // Ом
    EXPECT_STREQ(board.Record.Config[6].Unit,
                 "\xB0"
                 "C");  // °C
    EXPECT_EQ(board.Record.Config[3].Scale * 32768 + board.Record.Config[3].Offset, 20);
}

TEST(Simulator, RealTimePacesWords) {
    Configure(Scenario("1"));
    Board board(3);
    const auto begin = std::chrono::steady_clock::now();
    for (const int ms : {100, 200}) {
        EXPECT_EQ(board.Receive(16 * 100, 5000), 1600);
        EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(ms - 5));
    }
    const int32_t some = board.Receive(16 * 60000, 60);
    EXPECT_GE(some, 16 * 50);
    EXPECT_LT(some, 16 * 60000);
    EXPECT_EQ(some % 16, 0);
}

TEST(Simulator, EachFaultActsOnItsTargetAlone) {
    struct Case {
        const char* Fault;
        std::vector<int32_t> Results;  // of consecutive receives of 64 words from slot 3
    };
    const Case cases[] = {
        {"call = 'LTR27_Recv'\nslot = 3\nerror = -77\nafter = 1\ntimes = 1", {64, -77, 64}},
        {"slot = 3\nshort = 20", {20, 20}},
        {"slot = 3\nstall = true\ntimes = 2", {0, 0, 64}},
        {"slot = 3\nafter = 1\ntimes = 1\nunplug = true", {64, ltrsim::Unplugged, ltrsim::Unplugged}},
        {"slot = 3\nat = 3600\nerror = -5", {64}},
        {"call = 'LTR27_Recv'\ncrate = 'C2'\nerror = -5", {64}},
        {"call = 'LTR27_ADCStart'\nslot = 3\nerror = -5", {64}},
    };
    for (const Case& now : cases) {
        Configure(Scenario("0"));
        Board hit(3), spared(5);
        ASSERT_EQ(LtrSim_AddFault(now.Fault), 0) << LtrSim_Message();
        for (const int32_t result : now.Results) {
            EXPECT_EQ(hit.Receive(64), result) << now.Fault;
            EXPECT_EQ(spared.Receive(64), 64) << now.Fault;
        }
        LtrSim_ClearFaults();
        EXPECT_EQ(hit.Receive(64), 64) << now.Fault;
    }
    Board board(3);
    ASSERT_EQ(LtrSim_AddFault("call = 'LTR27_Recv'\ndelay = 0.1"), 0);
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(board.Receive(64), 64);
    EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(100));
}

TEST(Simulator, StartMarkShowsInEveryModuleAndStays) {
    struct Case {
        const char* CrateKeys;
        int32_t Mode;
        size_t Kadr;  // that shows the mark, counted from the request; 64: none
    };
    const Case cases[] = {{"", 5, 3},
                          {"start_mark_kadr = 0", 5, 0},
                          {"", 1, 64},
                          {"start_mark_after = 0.02", 4, 23},
                          {"start_marks = 'at once'", 2, 3},
                          {"start_marks = 'never'", 5, 64}};
    for (const Case& now : cases) {
        Configure(Scenario("0", now.CrateKeys));
        Board first(3), second(5);
        first.Receive(80);
        uint32_t before = 99, after = 99;
        EXPECT_EQ(RequestMark(now.Mode, before), 0);
        for (Board* board : {&first, &second}) {
            board->Receive(64 * 16);
            size_t kadr = 0;
            while (kadr < 64 && board->Marks[kadr * 16] >> 16 == before >> 16) ++kadr;
            EXPECT_EQ(kadr, now.Kadr) << now.CrateKeys;
        }
        RequestMark(0, after);
        EXPECT_EQ((after >> 16) - (before >> 16), now.Kadr < 64 ? 1u : 0u) << now.CrateKeys;
        EXPECT_EQ(Board(3).Receive(16), 16);
    }
    Configure(Scenario("1", "start_mark_after = 0.05"));
    Board board(3);
    uint32_t before = 0;
    RequestMark(1, before);
    board.Receive(16 * 100, 5000);
    EXPECT_EQ(board.Marks[16 * 48] >> 16, 0u);
    EXPECT_EQ(board.Marks[16 * 99] >> 16, 1u);
}

TEST(Simulator, EveryViolationIsCounted) {
    Configure(Scenario("0"));
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
        [&] { return LTR27_Open(&closed, Local, ModulePort, "C1", 3); },
        [&] { return LTR27_ADCStop(&closed); },
        [&] { return LTR27_GetConfig(nullptr); },
        [&] { return LTR27_Recv(&board.Record, nullptr, nullptr, 16, 0); },
        [&] { return board.Words.erase(board.Words.begin()), board.Process(1, 0); },
        [&] { return board.Receive(64), board.Words.erase(board.Words.begin() + 16), board.Process(1, 0); },
        [&] { return LTR_Open(&link); },
        [&] { return LTR_GetCrates(&link, serials); },
    };
    for (size_t k = 0; k < bad.size(); ++k) {
        EXPECT_LT(bad[k](), 0) << k;
        EXPECT_EQ(LtrSim_Violations(), static_cast<int32_t>(k + 1)) << LtrSim_Message();
    }
    EXPECT_STREQ(LtrSim_Message(), "LTR27_Init: wrong record size");
    LTR27_Close(&closed);
    LTR_Close(&link);
    EXPECT_EQ(LtrSim_Violations(), static_cast<int32_t>(bad.size())) << "closing what is not open is harmless";
}

TEST(Simulator, TwoThreadsInOneRecordAreSeenAndAReplacedScenarioEndsWaits) {
    Configure(Scenario("0.001"));
    Board board(3);
    TLTR27 copy = board.Record;
    // Which of the two comes first is left open: the other one is the violation.
    std::thread receiver([&] {
        while (board.Receive(64, 30000) == ltrsim::RecordBusy) continue;
    });
    const auto begin = std::chrono::steady_clock::now();
    const auto seconds = [&] {
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
    };
    while (LTR27_ADCStop(&copy) != ltrsim::RecordBusy && seconds() < 10) std::this_thread::yield();
    EXPECT_GE(LtrSim_Violations(), 1);
    Configure(Scenario("0"));
    receiver.join();
    EXPECT_LT(seconds(), 20);
    EXPECT_EQ(LTR27_ADCStop(&copy), ltrsim::NotOpen);
}

TEST(Simulator, MistakesInTheScenarioNameTheirLine) {
    struct Case {
        std::string Toml;
        const char* Message;
    };
    const std::string crate = "[[server]]\naddress = '1.2.3.4'\n[[server.crate]]\nserial = 'C'\n";
    const std::string module = crate + "[[server.crate.module]]\nslot = 2\nid = 'LTR27'\n";
    const Case cases[] = {
        {"speed = ", "scenario:1: "},
        {"\nspeed = -1", "scenario:2: key 'speed' must be a number from 0 to 1000"},
        {"[[server]]\naddress = '1.2.3'", "scenario:2: key 'address'"},
        {"[[server]]\n", "scenario:1: key 'address' is missing"},
        {crate + "typ = 'LTR030'", "scenario:5: key 'typ' is not known here"},
        {crate + "type = 'LTR099'", "scenario:5: key 'type'"},
        {crate + "[[server.crate]]\nserial = 'C'", "scenario:6: key 'serial' is used twice"},
        {module + "[[server.crate.module]]\nslot = 2\nid = 'LTR11'", "scenario:9: key 'slot' is used twice"},
        {module + "mezzanine = [{ position = 9 }]", "scenario:8: key 'position'"},
        {"[[fault]]\nerror = -1\nstall = true", "scenario:3: key 'stall' can't stand beside 'error'"},
        {"[[fault]]\ncall = 'LTR27_Receive'\nerror = -1", "scenario:2: key 'call'"},
    };
    Configure(Scenario("0"));
    for (const Case& now : cases) {
        EXPECT_EQ(LtrSim_Configure(now.Toml.c_str()), -1) << now.Toml;
        EXPECT_EQ(std::string(LtrSim_Message()).find(now.Message), 0u) << LtrSim_Message();
    }
    EXPECT_EQ(Board(3).Receive(16), 16) << "the old scenario stays";
}

}  // namespace
