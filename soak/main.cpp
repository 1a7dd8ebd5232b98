// Rounds of random hosts on random crates with random faults. Prints what was done, and ends with 1 at the first
// promise of the driver that is broken.
//   soak SECONDS SEED
#include <malloc.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <list>
#include <thread>

#include "platform/portable/test_hooks.h"
#include "simulator/control.h"
#include "simulator/sequence.h"
#include "soak/host.h"

namespace corvane::soak {

namespace {

using Clock = std::chrono::steady_clock;

auto Threads() {
    return std::distance(std::filesystem::directory_iterator("/proc/self/task"), {});
}

// Without what a scenario takes.
int64_t HeapInUse() {
    LtrSim_Configure("");
    return static_cast<int64_t>(mallinfo2().uordblks);
}

uint64_t Mixed(uint64_t seed, uint64_t number) {
    return (seed * 0x9E3779B97F4A7C15u + number) * 0xBF58476D1CE4E5B9u;
}

// What must be gone when every host has released its objects.
std::string Leftovers(long threads) {
    for (int wait = 0; wait < 5000 && Threads() != threads; wait++) usleep(1000);
    if (Threads() != threads) return "a thread is left";
    if (LtrSim_OpenConnections() != 0) return "a connection is left";
    if (LtrSim_RunningModules() != 0) return "a module still runs";
    return LtrSim_Violations() == 0 ? "" : LtrSim_Message();
}

// One to three hosts at once, then one that is left in peace.
std::string Round(uint64_t seed, Tally& sum) {
    Chance chance(seed);
    const Installation installation = RandomInstallation(chance);
    if (LtrSim_Configure(installation.Scenario.c_str()) != 0) return LtrSim_Message();
    platform::SkipSleeps = chance.OneIn(2);
    const auto threads = Threads();
    std::list<Host> hosts;
    std::list<std::thread> running;
    const int64_t count = chance.From(1, 3), steps = chance.From(10, 600);
    for (int64_t host = 0; host < count; host++) {
        Host& made = hosts.emplace_back(Mixed(seed, static_cast<uint64_t>(host)));
        running.emplace_back([&made, steps] { made.Run(steps); });
    }
    for (std::thread& host : running) host.join();
    LtrSim_ClearFaults();
    if (installation.HasMarks) hosts.emplace_back(seed).RunWhole();
    std::string broken;
    for (const Host& host : hosts) {
        sum.Add(host.Counts());
        if (broken.empty()) broken = host.Broken();
    }
    return broken.empty() ? Leftovers(threads) : broken;
}

// So many objects made and released and so many recordings started and stopped, twice: the second time nothing may
// grow. Returns what did.
std::string Cycles(int64_t objects, int64_t starts) {
    const auto cycle = [&] {
        for (int64_t made = 0; made < objects; made++) DriverObject().Test();
        DriverObject driver;
        driver.Test();
        driver.SetRate(1000);
        int64_t started = 0;
        for (int64_t start = 0; start < starts; start++) {
            started += driver.StartRecord() ? 1 : 0;
            driver.StopRecord();
        }
        return started;
    };
    const auto configure = [] {
        LtrSim_Configure(("speed = 0\n" + Server("127.0.0.1") + Crate(FirstCrate, {3, 5})).c_str());
    };
    configure();
    platform::SkipSleeps = true;
    cycle();
    const int64_t heap = HeapInUse();
    configure();
    if (cycle() != starts) return "a start failed";
    const int64_t growth = HeapInUse() - heap;
    std::printf("soak: %lld objects, %lld starts and stops: memory growth %lld bytes\n",
                static_cast<long long>(objects), static_cast<long long>(starts), static_cast<long long>(growth));
    return growth > 4096 ? "memory grows" : "";
}

std::string Rounds(int64_t seconds, uint64_t seed) {
    const auto end = Clock::now() + std::chrono::seconds(seconds);
    Tally sum;
    int64_t heap = 0;
    uint64_t round = 0;
    for (; Clock::now() < end || round < 10; round++) {
        const std::string broken = Round(Mixed(seed, round), sum);
        if (!broken.empty()) return "round " + std::to_string(round) + ": " + broken;
        if (round == 4) heap = HeapInUse();
    }
    std::printf("soak: %llu rounds, %lld steps, %lld recordings, %lld faults, %lld times out of memory\n",
                static_cast<unsigned long long>(round), static_cast<long long>(sum.Steps),
                static_cast<long long>(sum.Recordings), static_cast<long long>(sum.Faults),
                static_cast<long long>(sum.Shortages));
    std::printf("soak: %lld kadrs delivered; of one module each: %lld compared, %lld listed as gaps, %lld wrong\n",
                static_cast<long long>(sum.Delivered), static_cast<long long>(sum.Compared),
                static_cast<long long>(sum.Listed), static_cast<long long>(sum.Wrong));
    const int64_t growth = HeapInUse() - heap;
    std::printf("soak: memory growth %lld bytes\n", static_cast<long long>(growth));
    if (growth > 2048) return "memory grows";
    return "";
}

int Run(int64_t seconds, uint64_t seed) {
    alarm(static_cast<unsigned>(seconds) + 180);  // a hang is an end, too
    const auto number = static_cast<unsigned long long>(seed);
    std::printf("soak: seed %llu, %lld s\n", number, static_cast<long long>(seconds));
    std::fflush(stdout);
    std::thread([] {}).join();  // a sanitizer starts a thread of its own together with the first one
    std::string broken = Rounds(seconds, seed);
    if (broken.empty()) broken = Cycles(std::min<int64_t>(seconds * 20, 1000), std::min<int64_t>(seconds * 200, 10000));
    if (broken.empty()) return 0;
    std::printf("soak: seed %llu, %s\n", number, broken.c_str());
    return 1;
}

}  // namespace

}  // namespace corvane::soak

int main(int count, char** arguments) {
    if (count != 3) return std::fputs("usage: soak SECONDS SEED\n", stderr), 2;
    return corvane::soak::Run(std::atoll(arguments[1]), std::strtoull(arguments[2], nullptr, 10));
}
