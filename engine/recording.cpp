#include "engine/recording.h"

#include <algorithm>

#include "engine/acquisition.h"
#include "engine/module_control.h"
#include "engine/rate.h"

namespace corvane {

namespace {

void ChooseUsedModules(EngineState& engine, const std::vector<int16_t>& table) {
    for (ModuleRecord& module : engine.Opened()) module.Used = false;
    engine.FirstUsed = engine.OpenedCount;
    engine.LastUsed = -1;
    for (const int16_t channel : table) {
        const auto index = static_cast<int16_t>(channel / ModuleChannels);
        if (index >= engine.OpenedCount) continue;
        engine.FirstUsed = std::min(engine.FirstUsed, index);
        engine.LastUsed = std::max(engine.LastUsed, index);
        engine.Modules[static_cast<size_t>(index)].Used = true;
    }
}

void SizeBlocks(EngineState& engine, float rate) {
    engine.BlockRate = rate;
    engine.BlockKadrs = BlockKadrsFor(rate);
    engine.BlockWords = ModuleChannels * engine.BlockKadrs;
    engine.RecvTimeout = RecvTimeoutFor(rate, engine.BlockKadrs);
    engine.ReceiveBuffer.assign(static_cast<size_t>(engine.BlockWords), 0);
    engine.MarkBuffer.assign(static_cast<size_t>(engine.BlockWords), 0);
}

bool ConfigureUsedModules(DriverState& state) {
    for (ModuleRecord& module : state.Engine.UsedModules()) {
        if (!module.Used) continue;
        if (!state.ModuleApi.SetConfig(module.Handle)) {
            state.Device.LastError = state.ModuleApi.GetErrorString();
            return false;
        }
        module.Received = 0;
        module.StreamWords = 0;
        module.Block.assign(static_cast<size_t>(state.Engine.BlockWords), 0);
    }
    return true;
}

bool StartUsedModules(DriverState& state) {
    for (ModuleRecord& module : state.Engine.UsedModules()) {
        if (!module.Used) continue;
        if (!state.ModuleApi.ADCStart(module.Handle)) {
            state.Device.LastError = state.ModuleApi.GetErrorString();
            return false;
        }
        module.StartTick = platform::TickCount();
    }
    return true;
}

// The crate's count of START marks before this recording, or NoMark when the crate makes none.
int32_t RequestStartMark(DriverState& state) {
    uint32_t mark = 0;
    const int32_t mode = state.Crate.MarkSTARTMode + 1;
    const bool made = state.CrateApi.MakeStartMark(state.Crate.NetAddr, state.Crate.Serial, mode, mark);
    return made ? static_cast<int32_t>(mark & StartMarkBits) : NoMark;
}

// The time in which the recording thread exists but is suspended. It goes on at the end of it, come what may: to
// record, or, when the start did not succeed, to its own end.
class Starting {
public:
    explicit Starting(DriverState& state) : State_(state) { State_.Engine.Busy = true; }
    ~Starting() {
        if (!Succeeded) StopAllModules(State_);
        State_.Engine.Started = Succeeded;
        State_.Engine.Thread.Resume();
        if (!Succeeded) StopRecording(State_);
    }
    Starting(const Starting&) = delete;
    Starting& operator=(const Starting&) = delete;

    bool Succeeded = false;

private:
    DriverState& State_;
};

bool StartAcquisitionThread(DriverState& state) {
    EngineState& engine = state.Engine;
    StopAllModules(state);
    ChooseUsedModules(engine, state.Input.ChTable);
    SizeBlocks(engine, ApplyRate(state, state.Input.Rate));
    if (engine.UsedModules().empty()) return false;
    if (!ConfigureUsedModules(state)) return false;
    Starting start(state);
    if (!engine.Thread.Create(&AcquisitionThread, &state)) {
        state.Device.LastError = "Unable create thread!";
        return false;
    }
    if (!StartUsedModules(state)) return false;
    engine.MarkRef = RequestStartMark(state);
    return start.Succeeded = true;
}

}  // namespace

bool StartRecording(DriverState& state) {
    DeviceInfo& device = state.Device;
    if (state.Engine.Thread.Running()) {
        device.LastError = "Please wait end of previous thread of recording!";
        return false;
    }
    device.LastError.clear();
    if (!(state.Input.Rate > 0)) {
        device.LastError = "The Sampling Rate is not selected!";
        return false;
    }
    if (state.Input.ChTable.empty()) {
        device.LastError = "Any channel is not selected!";
        return false;
    }
    const int32_t blockKadrs = BlockKadrsFor(EffectiveRate(state.Input, state.Input.Rate));
    return PrepareInputBuffer(state.Input, blockKadrs) && StartAcquisitionThread(state);
}

void StopRecording(DriverState& state) {
    EngineState& engine = state.Engine;
    engine.Busy = false;
    engine.Thread.WaitEnd(StopWaitFor(engine.BlockRate, engine.BlockKadrs));
}

}  // namespace corvane
