#include "engine/single_reading.h"

#include "base/rounding.h"
#include "engine/store_block.h"

namespace corvane {

namespace {

constexpr int32_t PollInterval = 400;  // ms between two readings of one module
constexpr uint32_t PollTimeout = 50;   // ms; one kadr takes 10 ms at the polling rate
constexpr uint8_t PollDivisor = 9;     // 100 Hz

// Reads one kadr into the snapshot. The module's own record keeps its configuration: the reading works on a copy.
void ReadSnapshot(TLTR27API& api, ModuleRecord& module) {
    TLTR27 handle = module.Handle;
    handle.FrequencyDivisor = PollDivisor;
    if (api.SetConfig(handle) && api.ADCStart(handle)) {
        uint32_t words[ModuleChannels] = {};
        uint32_t size = ModuleChannels;
        double values[ModuleChannels] = {};
        // An incomplete kadr is not used: the last reading stays.
        if (api.Recv(handle, words, size, PollTimeout) == ModuleChannels &&
            api.ProcessData(handle, words, values, size, TLTR27API::Calibrate, TLTR27API::KeepCodes) &&
            size >= ModuleChannels) {
            for (size_t c = 0; c < ModuleChannels; c++) module.Snapshot[c] = values[c] - MidScale;
        }
    }
    api.ADCStop(handle);
}

void PollModule(TLTR27API& api, ModuleRecord& module) {
    if (static_cast<int32_t>(platform::TickCount() - module.PollTick) <= PollInterval) return;
    api.ADCStop(module.Handle);
    ReadSnapshot(api, module);
    module.PollTick = platform::TickCount();
}

const ModuleRecord* FittedModule(const EngineState& engine, int16_t index) {
    if (index < 0 || index / ModuleChannels >= engine.OpenedCount) return nullptr;
    const ModuleRecord& module = engine.Modules[static_cast<size_t>(index / ModuleChannels)];
    return ChannelFitted(module, index % ModuleChannels) ? &module : nullptr;
}

int16_t SnapshotSample(const EngineState& engine, int16_t index) {
    const ModuleRecord* module = FittedModule(engine, index);
    return module ? ClampToInt16(module->Snapshot[static_cast<size_t>(index % ModuleChannels)]) : int16_t{0};
}

}  // namespace

int16_t ReadChannelNow(EngineState& engine, int16_t index) {
    if (engine.Thread.Running() || FittedModule(engine, index) == nullptr) return 0;
    PollModule(engine.ModuleApi, engine.Modules[static_cast<size_t>(index / ModuleChannels)]);
    return SnapshotSample(engine, index);
}

std::vector<int16_t> ReadKadrNow(EngineState& engine, const InputState& input) {
    const bool recording = engine.Thread.Running();
    if (!recording) {
        for (ModuleRecord& module : engine.Opened()) PollModule(engine.ModuleApi, module);
    }
    std::vector<int16_t> kadr;
    for (const int16_t channel : input.ChTable) {
        kadr.push_back(recording ? int16_t{0} : SnapshotSample(engine, channel));
    }
    return kadr;
}

}  // namespace corvane
