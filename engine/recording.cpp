#include "engine/recording.h"

#include <algorithm>

#include "engine/acquisition.h"
#include "engine/module_control.h"
#include "engine/rate.h"
#include "engine/recording_log.h"
#include "platform/event_log.h"

namespace corvane {

namespace {

// The table is in order.
void ChooseUsedModules(EngineState& engine, const std::vector<int16_t>& table) {
    engine.FirstUsed = static_cast<int16_t>(table.front() / ModuleChannels);
    engine.LastUsed = static_cast<int16_t>(std::min(table.back() / ModuleChannels, engine.OpenedCount - 1));
}

void SizeBlocks(EngineState& engine, float rate) {
    engine.BlockRate = rate;
    engine.BlockKadrs = BlockKadrsFor(rate);
    engine.BlockWords = ModuleChannels * engine.BlockKadrs;
    engine.RecvTimeout = RecvTimeoutFor(rate, engine.BlockKadrs);
    engine.ReceiveBuffer.resize(static_cast<size_t>(engine.BlockWords));
    engine.MarkBuffer.resize(static_cast<size_t>(engine.BlockWords));
}

bool ConfigureUsedModules(EngineState& engine, std::string& lastError) {
    for (ModuleRecord& module : engine.UsedModules()) {
        if (!engine.ModuleApi.SetConfig(module.Handle)) {
            lastError = engine.ModuleApi.GetErrorString();
            return false;
        }
        module.Received = 0;
        module.StreamWords = 0;
        module.Block.assign(static_cast<size_t>(engine.BlockWords), 0);
    }
    return true;
}

bool StartUsedModules(EngineState& engine, std::string& lastError) {
    for (ModuleRecord& module : engine.UsedModules()) {
        if (!engine.ModuleApi.ADCStart(module.Handle)) {
            lastError = engine.ModuleApi.GetErrorString();
            return false;
        }
        module.StartTick = platform::TickCount();
    }
    return true;
}

// The crate's count of START marks before this recording, as MarkRef holds it; NoMark when the crate makes no mark.
int32_t RequestStartMark(EngineState& engine, const CrateInfo& crate) {
    uint32_t mark = 0;
    const int32_t mode = crate.MarkSTARTMode + 1;
    const bool made = engine.CrateApi.MakeStartMark(crate.NetAddr, crate.Serial, mode, mark);
    return made ? static_cast<int32_t>(mark & StartMarkBits) : NoMark;
}

// Lives while the recording thread exists but is suspended. Its destructor resumes the thread in any case: to record,
// or, when the start did not succeed, to end at once.
class Starting {
public:
    explicit Starting(EngineState& engine) : Engine_(engine) { Engine_.Busy = true; }
    ~Starting() {
        if (!Succeeded) StopAllModules(Engine_);
        Engine_.Started = Succeeded;
        Engine_.Thread.Resume();
        if (!Succeeded) StopRecording(Engine_);
    }
    Starting(const Starting&) = delete;
    Starting& operator=(const Starting&) = delete;

    bool Succeeded = false;

private:
    EngineState& Engine_;
};

bool StartAcquisitionThread(EngineState& engine, InputState& input, const CrateInfo& crate, std::string& lastError) {
    StopAllModules(engine);
    ChooseUsedModules(engine, input.ChTable);
    SizeBlocks(engine, ApplyRate(input, engine, input.Rate));
    if (engine.UsedModules().empty()) return false;
    if (!ConfigureUsedModules(engine, lastError)) return false;
    engine.Target = &input;
    Starting start(engine);
    if (!engine.Thread.Create(&AcquisitionThread, &engine)) {
        lastError = "Unable create thread!";
        return false;
    }
    if (!StartUsedModules(engine, lastError)) return false;
    engine.MarkRef = RequestStartMark(engine, crate);
    LogStarted(engine, crate);
    return start.Succeeded = true;
}

bool Start(EngineState& engine, InputState& input, const CrateInfo& crate, std::string& lastError) {
    if (engine.Thread.Running()) {
        lastError = "Please wait end of previous thread of recording!";
        return false;
    }
    LogEnded(engine);
    lastError.clear();
    if (!(input.Rate > 0)) {
        lastError = "The Sampling Rate is not selected!";
        return false;
    }
    if (input.ChTable.empty()) {
        lastError = "Any channel is not selected!";
        return false;
    }
    const int32_t blockKadrs = BlockKadrsFor(EffectiveRate(input, input.Rate));
    return PrepareInputBuffer(input, blockKadrs) && StartAcquisitionThread(engine, input, crate, lastError);
}

}  // namespace

bool StartRecording(EngineState& engine, InputState& input, const CrateInfo& crate, std::string& lastError) {
    const bool started = Start(engine, input, crate, lastError);
    if (!started) platform::LogEvent([&] { return "recording not started. " + lastError; });
    return started;
}

void StopRecording(EngineState& engine) {
    engine.Busy = false;
    engine.Thread.WaitEnd(StopWaitFor(engine.BlockRate, engine.BlockKadrs));
    LogEnded(engine);
}

}  // namespace corvane
