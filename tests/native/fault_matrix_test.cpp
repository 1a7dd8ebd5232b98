// Every vendor call fails in every way at every moment of a host's work, one fault in each cell. Whatever happens: each
// kadr is what the module sent or is listed as a gap, nothing stays behind, and once the fault is over the next
// recording is whole.
#include "soak/kadr_check.h"
#include "tests/native/driver_fixture.h"

namespace corvane {
namespace {

enum Moment { Opening, Reading, Starting, Running, RingFull, Stopping, Releasing };

// Crates whose modules are aligned by their starts, and whose START mark comes after a few blocks.
constexpr const char* Aligned = "type = \"LTR010\"";
constexpr const char* Marked = "start_mark_kadr = 150";

struct Cell {
    Moment When;
    const char* Crate;
    std::string Call;
    int After;  // calls that pass first
    std::string Way;
    bool Back = false;  // the fault is over while the recording goes on

    bool Has(const char* word) const { return Way.find(word) != std::string::npos; }
    bool Once() const { return Has("times"); }
    bool Hangs() const { return Has("1e6"); }
    std::string Fault() const { return "call = \"" + Call + "\"\nafter = " + std::to_string(After) + "\n" + Way; }
};

const std::vector<std::string> Errors = {"error = -7\ntimes = 1", "error = -7", "error = -10000",
                                         "error = -2147483648"};
const std::vector<std::string> Often = {"error = 7", "delay = 0.02\ntimes = 1", "unplug = true"};
const std::vector<std::string> OfModule = {"slot = 5\nerror = -7", "slot = 3\nunplug = true"};
const std::vector<std::string> Receiving = {
    "short = 0\ntimes = 1",    "short = 7\ntimes = 1", "short = 600\ntimes = 1", "short = 600",
    "excess = 5\ntimes = 1",   "excess = 1000000",     "marks = 1234567890",     "slot = 5\nshort = 17\ntimes = 3",
    "slot = 3\nunplug = true", "unplug = true"};
const std::vector<std::string> Slow = {"stall = true\ntimes = 1", "delay = 0.7\ntimes = 1"};  // the time-out: 564 ms
const std::vector<std::string> Hanging = {"delay = 1e6"};                                     // until the fault is over
const std::vector<std::string> Processing = {
    "value = nan\ntimes = 1", "value = inf",           "value = -inf\ntimes = 3",
    "size = 0\ntimes = 1",    "size = 17\ntimes = 2",  "size = 1023",
    "size = 4294967295",      "slot = 5\nvalue = nan", "unplug = true"};

// Under Wine, where time can't be skipped, one cell of so many; the number has no divisor in common with the lists'
// lengths.
#ifdef _WIN32
constexpr size_t Every = 11;
#else
constexpr size_t Every = 1;
#endif

std::vector<Cell> Cells() {
    std::vector<Cell> cells;
    const auto add = [&](Moment when, const char* crate, const std::string& call, int turns,
                         std::initializer_list<const std::vector<std::string>*> ways) {
        for (int after = 0; after < turns; after++) {
            for (const auto* list : ways) {
                if (after > 0 && (list == &Slow || list == &Hanging)) continue;
                for (const std::string& way : *list) cells.push_back({when, crate, call, after, way});
            }
        }
    };
    using Calls = std::initializer_list<std::pair<const char*, int>>;
    for (const auto& [call, turns] : Calls{{"LTR_Init", 2},
                                           {"LTR_Open", 2},
                                           {"LTR_GetCrates", 1},
                                           {"LTR_GetCrateInfo", 1},
                                           {"LTR_GetCrateModules", 1},
                                           {"LTR_Close", 2},
                                           {"LTR27_Init", 2}}) {
        add(Opening, Marked, call, turns, {&Errors, &Often});
    }
    for (const auto& [call, turns] :
         Calls{{"LTR27_Open", 2}, {"LTR27_GetConfig", 2}, {"LTR27_GetDescription", 4}, {"LTR27_ADCStop", 2}}) {
        add(Opening, Marked, call, turns, {&Errors, &Often, &OfModule});
    }
    for (const char* call :
         {"LTR_Init", "LTR_Open", "LTR_GetCrateInfo", "LTR_Config", "LTR_MakeStartMark", "LTR_Close"}) {
        add(Starting, Marked, call, 1, {&Errors, &Often});
    }
    cells.push_back({Starting, Marked, "LTR_Open", 0, "marks = 4294901760"});
    for (const char* call : {"LTR27_ADCStop", "LTR27_SetConfig", "LTR27_ADCStart"}) {
        for (const Moment when : {Reading, Starting}) add(when, Aligned, call, 2, {&Errors, &Often, &OfModule});
    }
    for (const Moment when : {Stopping, Releasing}) {
        add(when, Aligned, "LTR27_ADCStop", 2, {&Errors, &Often, &OfModule});
        add(when, Marked, "LTR27_Recv", 1, {&Errors, &Receiving, &Slow});
    }
    add(Stopping, Aligned, "LTR27_ADCStop", 1, {&Hanging});
    add(Releasing, Marked, "LTR27_Close", 2, {&Errors, &Often, &OfModule});
    for (const auto& [when, crate] : {std::pair{Starting, Aligned}, {Starting, Marked}, {Running, Aligned}}) {
        add(when, crate, "LTR27_Recv", 3, {&Errors, &Receiving, &Slow, &Hanging});
        add(when, crate, "LTR27_ProcessData", 2, {&Errors, &Processing, &Hanging});
    }
    for (const Moment when : {Reading, RingFull}) {
        add(when, Aligned, "LTR27_Recv", 1, {&Errors, &Receiving});
        add(when, Aligned, "LTR27_ProcessData", 1, {&Errors, &Processing});
    }
    for (size_t i = 0, count = cells.size(); i < count; i++) {
        if (cells[i].When != Running || cells[i].After != 0 || cells[i].Once() || cells[i].Hangs()) continue;
        cells.push_back(cells[i]);
        cells.back().Back = true;
    }
    return cells;
}

class FaultMatrix : public DriverFixture {
protected:
    void TheMomentIs(Moment moment) {
        if (Now->When == moment) AddFault(Now->Fault());
    }

    // False only where the failure can't be passed over, and then with the reason.
    void Open() {
        TheMomentIs(Opening);
        const bool opened = Driver->Test();
        if (Now->When != Opening) {
            ASSERT_TRUE(opened);
            return;
        }
        const std::string& call = Now->Call;
        const bool ofModule = call.starts_with("LTR27_");
        const bool harmless = call.ends_with("Close") || call == "LTR_GetCrateInfo" || call == "LTR27_ADCStop";
        if (Now->Has("delay") || (!Now->Has("unplug") && (harmless || (ofModule && Now->Once())))) {
            EXPECT_TRUE(opened);
        } else if (Now->After == 0 && !Now->Has("slot") && !Now->Has("unplug")) {
            EXPECT_FALSE(opened);
        }
        EXPECT_EQ(Driver->BasePort(), opened ? -1 : 0);
        // Nobody is told of a crate that can't be reached or says nothing; a library may have no text for its code.
        const bool quiet = Now->Has("-10000") || Now->Has("-2147483648") || Now->Has("unplug") ||
                           (!ofModule && (Now->Has("error = 7") || Now->After > 0 || call == "LTR_GetCrateModules"));
        EXPECT_TRUE(opened || quiet || !Driver->LastError().empty());
        EXPECT_TRUE(opened || !ofModule || !Now->Has("= -7") || Driver->LastError().starts_with("Error '-7'"));
        if (!opened) LtrSim_ClearFaults();
        ASSERT_TRUE(Driver->Test()) << Driver->LastError();
    }

    // A reading that fails leaves the last one.
    void Read() {
        if (Now->When != Reading) return;
        constexpr double Last = 1234;
        for (ModuleRecord& module : State().Engine.Opened()) {
            module.PollTick -= 1000;
            module.Snapshot.fill(Last);
        }
        Select(FirstChannels(14));
        TheMomentIs(Reading);
        const std::vector<int16_t> kadr = Driver->GetKadr();
        ASSERT_EQ(kadr.size(), 14u);
        const bool incomplete =
            Now->After == 0 && (Now->Has("short = 0") || Now->Has("short = 7") || Now->Has("size = 0"));
        if (!Now->Has("value") && !Now->Has("slot")) {
            EXPECT_TRUE(std::ranges::all_of(
                kadr, [&](int16_t sample) { return sample == Last || (sample == -16384 && !incomplete); }));
        }
        LtrSim_ClearFaults();
    }

    bool Start() {
        std::vector<int16_t> channels = FirstChannels(Driver->ChannelsCount());
        if (Now->After == 1) channels.erase(channels.begin());  // the channel for which senseless values come
        Select(channels);
        Driver->SetRate(1000);
        Driver->SetInputSizeData(1024);
        Check = std::make_unique<KadrCheck>(Driver->InputChannels());
        TheMomentIs(Starting);
        const bool started = Driver->StartRecord();
        EXPECT_EQ(Driver->Busy(), started);
        if (Now->When != Starting) return started;
        const bool needed = Now->Call == "LTR27_SetConfig" || Now->Call == "LTR27_ADCStart" ||
                            (Now->Call == "LTR27_ADCStop" && Now->Has("unplug"));
        const bool hit = !Now->Has("delay") && (Now->After == 0 || !Now->Has("slot"));  // one call of a slot's two
        EXPECT_EQ(started, !needed || !hit);
        if (!started && !Now->Has("0000") && !Now->Has("-2147483648")) {
            EXPECT_TRUE(Driver->LastError().starts_with("Error '")) << Driver->LastError();
        }
        EXPECT_TRUE(started || Now->Has("unplug") || LtrSim_RunningModules() == 0);
        EXPECT_TRUE(started || !State().Engine.Thread.Running());
        return started;
    }

    // Takes all there is, until so many more kadrs, or a block without a measured one, are taken. False when they don't
    // come.
    bool TakeAndCheck(int64_t kadrs) {
        const int64_t wanted = Check->Kadrs + kadrs, listed = Check->Listed + 128;
        const auto channels = static_cast<size_t>(Driver->InputCountChannels());
        std::vector<int16_t> samples(4096 * channels);
        return Eventually([&] {
            int32_t count = static_cast<int32_t>(samples.size()), remaining = 0;
            const int64_t first = Driver->KadrsRead();
            const int32_t taken = Driver->GetData(samples.data(), count, remaining);
            Check->Take(samples.data(), first, taken, Driver->Gaps());
            return Check->Kadrs >= wanted || Check->Listed >= listed;
        });
    }

    void Record() {
        if (!Start()) return;
        // A module that doesn't deliver is waited for until the mark has been seen in its data.
        const bool starved = Now->When == Starting && Now->Crate == Marked && !Now->Once() &&
                             (Now->Has("unplug") || (Now->Has("error") && !Now->Call.starts_with("LTR_")));
        EXPECT_TRUE(TakeAndCheck(starved || (Now->Hangs() && Now->When == Starting) ? 0 : 128));
        const int64_t ring = Driver->InputSizeKadrs();
        if (Now->When == RingFull) {
            EXPECT_TRUE(Eventually([&] { return Driver->InputCountKadrs() == ring; }));
        }
        TheMomentIs(RingFull);
        TheMomentIs(Running);
        const bool goesOn = Now->When == RingFull || (Now->When == Running && !Now->Hangs());
        EXPECT_TRUE(TakeAndCheck(goesOn ? ring + 128 : 0));
        if (Now->Back) {
            LtrSim_ClearFaults();
            EXPECT_TRUE(TakeAndCheck(ring + 128));
        }
        EXPECT_TRUE(Driver->Busy());
        EXPECT_TRUE(!Now->Hangs() || Now->When == Stopping || Eventually([] { return LtrSim_DelayedCalls() > 0; }));
        TheMomentIs(Stopping);
        TheMomentIs(Releasing);
        const auto start = std::chrono::steady_clock::now();
        Now->When == Releasing ? Driver.reset() : Driver->StopRecord();
        const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
        // Two time-outs; two blocks of 64 ms, on a machine that may halt for a moment, and never two time-outs.
        EXPECT_LT(took.count(), Now->When == Releasing ? 3 : 1.1);
        if (Driver) TakeAndCheck(0);
        EXPECT_EQ(Check->Wrong, 0) << Check->Fault;
        if (!Now->Hangs()) return;
        EXPECT_FALSE(Driver->StartRecord());
        EXPECT_TRUE(Driver->LastError().starts_with("Please wait end of previous thread"));
    }

    // With the fault over: all that was recorded is right, and nothing is missing.
    void RecordWhole() {
        LtrSim_ClearFaults();
        if (!Driver) {
            EXPECT_EQ(LtrSim_OpenConnections(), 0);
            Driver = std::make_unique<DriverObject>();
        }
        Now = &Whole;
        ASSERT_TRUE(Driver->Test()) << Driver->LastError();
        ASSERT_TRUE(Eventually([&] { return Start(); })) << Driver->LastError();
        EXPECT_EQ(Driver->LastError(), "");
        EXPECT_TRUE(TakeAndCheck(256));
        StopWhole();
        EXPECT_TRUE(Driver->Gaps().empty());
        EXPECT_EQ(Check->Wrong, 0) << Check->Fault;
    }

    inline static const Cell Whole = {Releasing, Marked, "", 0, "times"};
    const Cell* Now = nullptr;
    std::unique_ptr<KadrCheck> Check;
};

TEST_F(FaultMatrix, EveryCallFailsInEveryWayAtEveryMoment) {
    auto threads = Threads();
    const std::vector<Cell> cells = Cells();
    size_t ran = 0;
    platform::SkipSleeps = true;
    for (size_t i = 0; i < cells.size(); i += Every, ran++) {
        const Cell& cell = cells[i];
        SCOPED_TRACE(cell.Fault() + "\nmoment " + std::to_string(cell.When) + ", crate " + cell.Crate);
        Now = &cell;
        Configure(SequenceCrate({3, 5}, "0", cell.Crate));
        Driver->SetInteractive(false);
        Open();
        if (HasFatalFailure()) return;
        Read();
        Record();
        RecordWhole();
        Driver.reset();
        EXPECT_EQ(LtrSim_OpenConnections(), 0);
        EXPECT_EQ(LtrSim_Violations(), 0) << LtrSim_Message();
        if (i == 0) threads = std::max(threads, Threads());  // the platform's own, which come with the first use
        EXPECT_TRUE(Eventually([&] { return Threads() <= threads; }));
        if (HasFailure()) return;  // the first cell is told whole
    }
    std::printf("fault matrix: %zu cells\n", ran);
}

}  // namespace
}  // namespace corvane
