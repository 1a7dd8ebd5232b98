// What a host feels of the driver: how long the calls take that it waits for, and what a recording costs. The same
// program natively and, through COM, under Windows. Exit code 1 when a limit is missed.
//   host_bench [seconds of each recording, 20 by default]
#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <memory>
#include <numeric>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "bench/comparison.h"
#include "bench/input_data.h"
#include "bench/process_time.h"
#include "recorder/host_device.h"
#include "simulator/control.h"

namespace corvane::bench {

namespace {

using recorder::HostDevice;
using Clock = std::chrono::steady_clock;

constexpr int Rounds = 21;
constexpr float Rate = 1000;    // Hz
constexpr double BlockMs = 64;  // 64 kadrs at 1000 Hz

double MsSince(Clock::time_point start) {
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

void SleepMs(int milliseconds) {
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

// A local server with `crates` crates, the last of which holds two LTR27 modules and makes no START mark unless told
// so.
std::string Scenario(int crates, const std::string& lastCrateKeys) {
    std::string toml = "[[server]]\naddress = \"127.0.0.1\"\n";
    for (int crate = 1; crate <= crates; crate++) {
        toml += "[[server.crate]]\nserial = \"CRATE" + std::to_string(crate) + "\"\n";
        if (crate < crates) continue;
        toml += lastCrateKeys + "\n";
        for (const char* slot : {"3", "5"}) {
            toml += std::string("[[server.crate.module]]\nid = \"LTR27\"\nslot = ") + slot + "\n";
            for (int position = 1; position <= 8; position++) {
                toml += "[[server.crate.module.mezzanine]]\nposition = " + std::to_string(position) +
                        "\nname = \"SEQ\"\nunit = \"V\"\nbottom = -10\ntop = 10\nsignal = { kind = \"sequence\" }\n";
            }
        }
    }
    return toml;
}

const std::string NoMark = "type = \"LTR010\"";

class Table {
public:
    Table() { std::printf("| what | measured | limit | met |\n|---|---|---|---|\n"); }

    void Add(const char* name, double measured, const char* unit, double limit) {
        Add(name, measured, unit, measured, unit, limit);
    }

    void AddTime(const char* name, double ms, double limitMs) {
        if (ms >= 1) return Add(name, ms, "ms", limitMs);
        Add(name, 1000 * ms, "us", ms, "ms", limitMs);
    }

    bool AllMet() const { return AllMet_; }

private:
    // `shown` is `measured` in a unit that suits it.
    void Add(const char* name, double shown, const char* shownUnit, double measured, const char* unit, double limit) {
        const bool met = measured <= limit;
        std::printf("| %-52s | %8.3g %-2s | at most %g %s | %s |\n", name, shown, shownUnit, limit, unit,
                    met ? "yes" : "NO");
        std::fflush(stdout);
        AllMet_ = AllMet_ && met;
    }

    bool AllMet_ = true;
};

std::unique_ptr<HostDevice> Open(const std::string& scenario) {
    if (LtrSim_Configure(scenario.c_str()) != 0) throw std::runtime_error(LtrSim_Message());
    auto device = std::make_unique<HostDevice>();
    if (!device->Test()) throw std::runtime_error(device->LastError());
    std::vector<int16_t> all(32);
    std::iota(all.begin(), all.end(), int16_t{0});
    device->SetInputChannels(all);
    device->SetRate(Rate);
    return device;
}

// Times of several runs, slowest last, without the first, which finds everything cold.
template <typename Timed, typename Between>
std::vector<double> TimesMs(Timed timed, Between between) {
    std::vector<double> times;
    for (int round = 0; round <= Rounds; round++) {
        const Clock::time_point start = Clock::now();
        timed();
        if (round > 0) times.push_back(MsSince(start));
        between(round);
    }
    std::sort(times.begin(), times.end());
    return times;
}

// Creates and releases an object while another thread's object keeps the component loaded.
double MedianCreationMs() {
    const auto createAndRelease = [] { HostDevice(); };
    createAndRelease();  // what fails, fails on this thread
    std::atomic<bool> ready = false;
    std::atomic<bool> done = false;
    std::thread otherHost([&] {
        const HostDevice device;
        ready = true;
        while (!done) SleepMs(1);
    });
    while (!ready) SleepMs(1);
    const double median = TimesMs(createAndRelease, [](int) {})[Rounds / 2];
    done = true;
    otherHost.join();
    return median;
}

void AddLatencies(Table& table) {
    LtrSim_Configure(Scenario(1, NoMark).c_str());
    table.AddTime("creating and releasing the first object, warm, median", MedianCreationMs(), 5);
    LtrSim_Configure(Scenario(16, NoMark).c_str());
    {
        HostDevice host;
        const Clock::time_point start = Clock::now();
        if (!host.Test()) throw std::runtime_error(host.LastError());
        table.AddTime("Test with 16 crates", MsSince(start), 50);
    }

    const auto device = Open(Scenario(1, NoMark));
    double worstStop = 0;
    const std::vector<double> starts = TimesMs([&] { device->StartRecord(); },
                                               [&](int round) {
                                                   SleepMs(100 + 7 * round);  // another moment of a block each time
                                                   const Clock::time_point stop = Clock::now();
                                                   device->StopRecord();
                                                   worstStop = std::max(worstStop, MsSince(stop));
                                               });
    table.AddTime("StartRecord without a START mark, median", starts[Rounds / 2], 5);
    table.AddTime("StopRecord while data flows, slowest", worstStop, BlockMs + 5);
    LtrSim_AddFault("call = \"LTR27_Recv\"\nstall = true");
    device->StartRecord();
    SleepMs(100);
    const Clock::time_point stop = Clock::now();
    device->StopRecord();
    table.AddTime("StopRecord while nothing comes", MsSince(stop), 2 * BlockMs + 5);
}

// From the moment when the last words of a block have been taken from the modules until the host sees its kadrs. The
// host does nothing but look.
double MedianVisibilityMs() {
    constexpr int Blocks = 20;
    const auto device = Open(Scenario(1, NoMark));
    device->SetInputSizeData(32768);
    if (!device->StartRecord()) throw std::runtime_error(device->LastError());
    const int32_t before = LtrSim_Calls("LTR27_ProcessData");
    std::vector<double> times;
    for (int block = 1; block <= Blocks; block++) {
        const Clock::time_point giveUp = Clock::now() + std::chrono::seconds(5);
        const auto waitUntil = [&](auto condition) {
            while (!condition()) {
                if (Clock::now() > giveUp) throw std::runtime_error("no block comes");
            }
        };
        waitUntil([&] { return LtrSim_Calls("LTR27_ProcessData") >= before + 2 * block; });
        const Clock::time_point taken = Clock::now();
        waitUntil([&] { return device->InputCountKadrs() >= block * int32_t{64}; });
        times.push_back(MsSince(taken));
    }
    device->StopRecord();
    std::sort(times.begin(), times.end());
    return times[Blocks / 2];
}

// Median time of InputData with 32 channels x 32768 unread kadrs, divided by that of malloc and memcpy of as much.
double InputDataRatio() {
    constexpr int Fills = 15;
    constexpr int32_t Kadrs = 32768;
    const auto device = Open("speed = 0\n" + Scenario(1, NoMark));
    device->SetInputSizeData(Kadrs);
    InputDataHost host;
    std::vector<double> ours, plain;
    const std::vector<int16_t> source(size_t{32} * (Kadrs + 1), 1);
    const size_t bytes = source.size() * sizeof(int16_t);
    void* copy = nullptr;
    for (int round = 0; round < Fills; round++) {
        if (!device->StartRecord()) throw std::runtime_error(device->LastError());
        for (const Clock::time_point fill = Clock::now(); device->InputCountKadrs() < Kadrs; SleepMs(1)) {
            if (MsSince(fill) > 30000) throw std::runtime_error("the ring is not filled");
        }
        device->StopRecord();
        Clock::time_point start = Clock::now();
        if (host.Take() != source.size()) throw std::runtime_error("kadrs are missing");
        ours.push_back(MsSince(start));
        start = Clock::now();
        std::free(copy);
        copy = std::malloc(bytes);
        std::memcpy(copy, source.data(), bytes);
        Keep(copy);
        plain.push_back(MsSince(start));
    }
    std::free(copy);
    std::sort(ours.begin(), ours.end());
    std::sort(plain.begin(), plain.end());
    return ours[Fills / 2] / plain[Fills / 2];
}

// Share of a core that a recording of 32 channels uses. The host looks in every 50 ms; it takes the data when
// `reading`.
void AddCost(Table& table, const char* name, const std::string& crateKeys, int32_t ringKadrs, bool reading,
             int seconds) {
    const auto device = Open(Scenario(1, crateKeys));
    device->SetInputSizeData(ringKadrs);
    if (!device->StartRecord()) throw std::runtime_error(device->LastError());
    std::vector<int16_t> samples(size_t{32} * 4096);
    if (!reading) SleepMs(ringKadrs + 500);  // the ring is full by then
    const double before = ProcessSeconds();
    const Clock::time_point start = Clock::now();
    while (MsSince(start) < 1000.0 * seconds) {
        SleepMs(50);
        if (reading) device->GetData(samples);
    }
    const double share = 100 * (ProcessSeconds() - before) / (MsSince(start) / 1000);
    device->StopRecord();
    table.Add(name, share, "%", 1);
}

int Run(int seconds) {
    Table table;
    AddLatencies(table);
    table.AddTime("from a block's last words to the host's sight, median", MedianVisibilityMs(), 1);
    table.Add("InputData of 32 x 32768, against malloc and memcpy", InputDataRatio(), "x", 1.5);
    AddCost(table, "recording 32 channels at 1000 Hz, of a core", NoMark, 32768, true, seconds);
    AddCost(table, "the same with the ring full", NoMark, 1024, false, seconds);
    AddCost(table, "the same, waiting for a START mark", "start_marks = \"never\"", 32768, true, seconds);
    return table.AllMet() ? 0 : 1;
}

}  // namespace

}  // namespace corvane::bench

int main(int count, char** values) {
    try {
        return corvane::bench::Run(count > 1 ? std::max(1, std::atoi(values[1])) : 20);
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "host_bench: %s\n", failure.what());
        return 2;
    }
}
