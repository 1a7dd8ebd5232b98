#include "bench/input_data.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <numeric>
#include <stdexcept>
#include <thread>
#include <vector>

#include "bench/comparison.h"
#include "driver/driver_object.h"

namespace corvane::bench {

namespace {

using Clock = std::chrono::steady_clock;

constexpr int32_t Channels = 32, Kadrs = 32768;
constexpr int Rounds = 15;

double MicrosecondsSince(Clock::time_point start) {
    return std::chrono::duration<double, std::micro>(Clock::now() - start).count();
}

void Fill(DriverObject& driver) {
    if (!driver.StartRecord()) throw std::runtime_error(driver.LastError());
    for (const Clock::time_point start = Clock::now(); driver.InputCountKadrs() < Kadrs;) {
        if (MicrosecondsSince(start) > 30e6) throw std::runtime_error("the ring is not filled");
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    driver.StopRecord();
}

}  // namespace

double InputDataRatio() {
    DriverObject driver;
    driver.Test();
    std::vector<int16_t> table(Channels);
    std::iota(table.begin(), table.end(), int16_t{0});
    driver.SetInputChannels(table);
    driver.SetRate(1000);
    driver.SetInputSizeData(Kadrs);
    std::vector<double> ours, plain;
    const std::vector<int16_t> source(size_t{Channels} * (Kadrs + 1), 1);
    const size_t bytes = source.size() * sizeof(int16_t);
    for (int round = 0; round < Rounds; round++) {
        Fill(driver);
        Clock::time_point start = Clock::now();
        const InputDataShape shape = driver.NextInputData();
        auto* data = static_cast<int16_t*>(std::malloc(bytes));
        driver.TakeInputData(shape, data);
        ours.push_back(MicrosecondsSince(start));
        start = Clock::now();
        void* copy = std::malloc(bytes);
        std::memcpy(copy, source.data(), bytes);
        Keep(copy);
        plain.push_back(MicrosecondsSince(start));
        std::free(copy);
        std::free(data);
    }
    std::sort(ours.begin(), ours.end());
    std::sort(plain.begin(), plain.end());
    return ours[Rounds / 2] / plain[Rounds / 2];
}

}  // namespace corvane::bench
