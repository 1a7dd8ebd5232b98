// Whatever two modules send while they are recorded: samples in range, and every kadr that was not measured listed.
#include <unistd.h>
#include <array>

#include "driver/driver_object.h"
#include "driver/lifecycle.h"
#include "fuzz/vendor_library.h"
#include "platform/portable/test_hooks.h"
#include "standins/registry_hooks.h"

namespace corvane {
namespace {

constexpr int64_t MostKadrs = 640;  // ten blocks

// What a measured value can become. Filled-in samples are 0 or -16384, or measured ones again.
bool Measured(int16_t sample) {
    return sample == 1000 - 16384 || sample == 32767 - 16384 || sample == -16389;
}

// In order and without overlap for each module, within what was recorded.
void RequireGaps(const std::vector<Gap>& gaps, int64_t recorded) {
    std::array<int64_t, 2> end = {};
    for (const Gap& gap : gaps) {
        Require(gap.Module == 0 || gap.Module == 1, "a gap of a module");
        int64_t& last = end[static_cast<size_t>(gap.Module)];
        Require(gap.First >= last && gap.Kadrs > 0, "gaps in order");
        last = gap.First + gap.Kadrs;
        Require(last <= recorded, "gaps of kadrs that were recorded");
    }
}

void RequireKadr(std::span<const int16_t> kadr, int64_t number, const std::vector<Gap>& gaps) {
    std::array<bool, 2> missing = {};
    for (const Gap& gap : gaps) {
        if (gap.First <= number && number < gap.First + gap.Kadrs) missing[static_cast<size_t>(gap.Module)] = true;
    }
    for (size_t channel = 0; channel < kadr.size(); channel++) {
        Require(missing[channel / ModuleChannels] || Measured(kadr[channel]), "measured or listed");
    }
}

void Record(DriverObject& driver) {
    std::array<int16_t, 2 * ModuleChannels> table;
    for (size_t channel = 0; channel < table.size(); channel++) table[channel] = static_cast<int16_t>(channel);
    driver.SetInputChannels(table);
    driver.SetInputSizeData(1024 * 32);
    driver.SetRate(1000);
    if (!driver.StartRecord()) {
        Require(!driver.Busy(), "not busy");
        return;
    }
    std::array<int16_t, 64 * table.size()> samples;
    for (int64_t next = 0; next < MostKadrs; next = driver.KadrsRead()) {
        int32_t count = samples.size(), remaining = 0;
        const int32_t kadrs = driver.GetData(samples.data(), count, remaining);
        if (kadrs == 0) usleep(50);
        Require(count == kadrs * static_cast<int32_t>(table.size()) && remaining >= 0, "whole kadrs");
        const std::vector<Gap> gaps = driver.Gaps();
        for (int32_t kadr = 0; kadr < kadrs; kadr++) {
            const std::span<const int16_t> all = samples;
            RequireKadr(all.subspan(static_cast<size_t>(kadr) * table.size(), table.size()), next + kadr, gaps);
        }
    }
    driver.StopRecord();
    Require(!driver.Busy(), "stopped");
    RequireGaps(driver.Gaps(), driver.KadrsRecorded() + 64);  // a block is listed before it is committed
}

}  // namespace
}  // namespace corvane

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace corvane;
    platform::ClearRegistry();
    platform::SkipSleeps = true;
    FuzzInput input(data, size);
    Answers.Slots = 3;
    {
        DriverObject driver;
        driver.SetInteractive(false);
        Require(driver.Test() && driver.ChannelsCount() == 2 * ModuleChannels, "two modules");
        Answers.Stream = &input;
        DriverState& state = AttachObject();
        for (ModuleRecord& module : state.Engine.Opened()) module.PollTick -= 1000;  // the last reading is old
        DetachObject(state);
        // A reading is limited after mid-scale is subtracted.
        constexpr int Readings[] = {0, 1000 - 16384, 40000 - 16384, -5 - 16384, 32767, -32768};
        for (const int16_t sample : driver.GetKadr()) {
            Require(std::ranges::find(Readings, sample) != std::end(Readings), "a reading");
        }
        Record(driver);
    }
    Answers.Stream = nullptr;
    Require(Answers.Connections == 0, "every module closed");
    return 0;
}
