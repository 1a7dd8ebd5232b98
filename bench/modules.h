// What the benchmarks record from: two modules with all positions fitted and a block of codes each, and the usual
// sizes.
#pragma once

#include <cstdint>
#include <numeric>
#include <utility>
#include <vector>

#include "engine/store_block.h"

namespace corvane::bench {

constexpr int32_t BlockKadrs = 64;
constexpr size_t BlockSamples = size_t{ModuleChannels} * BlockKadrs;  // of one module
constexpr int32_t RingKadrs = 32768;

struct Modules {
    explicit Modules(std::vector<int16_t> table) : Table(std::move(table)) {
        Engine.Modules.resize(MaxModules);
        Engine.OpenedCount = MaxModules;
        for (ModuleRecord& module : Engine.Modules) {
            for (MezzanineInfo& mezzanine : module.Mezzanines) mezzanine.Name = "fitted";
            for (size_t i = 0; i < BlockSamples; i++) {
                module.Block.push_back(static_cast<double>(i * 7919 % 32768) + 0.3);
            }
        }
        Plan = MakeStorePlan(Engine, Table);
    }

    std::vector<int16_t> Table;
    EngineState Engine;
    StorePlan Plan;
};

inline std::vector<int16_t> FirstChannels(int count) {
    std::vector<int16_t> table(static_cast<size_t>(count));
    std::iota(table.begin(), table.end(), int16_t{0});
    return table;
}

}  // namespace corvane::bench
