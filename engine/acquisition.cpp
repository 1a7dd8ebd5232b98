#include "engine/acquisition.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <vector>

#include "base/rounding.h"
#include "driver/model/engine_state.h"
#include "driver/model/input_state.h"
#include "engine/module_control.h"
#include "engine/rate.h"
#include "engine/store_block.h"

namespace corvane {

namespace {

constexpr uint32_t PollPause = 5;  // ms between two checks of something that takes time

// One recording, as its thread sees it.
class Acquisition {
public:
    explicit Acquisition(EngineState& engine);

    void Run();

private:
    bool Busy() const { return Engine_.Busy; }
    void AlignModules();
    void WaitStartMark();
    void WaitForRoom();
    void ReceiveBlock();
    int32_t Receive(ModuleRecord& module, int32_t from, int32_t count, uint32_t* marks);
    int32_t ReceiveWholeKadrs(ModuleRecord& module, uint32_t* marks);
    void DropWords(int32_t& words, int32_t count);
    int32_t FindStartMark(int32_t words) const;
    void CompleteBlock(ModuleRecord& module, int32_t words);
    void ListGaps();
    void ListGapsOf(const ModuleRecord& module);
    int32_t WholeKadrs(const ModuleRecord& module, size_t values) const;
    size_t IndexOf(const ModuleRecord& module) const { return static_cast<size_t>(&module - Engine_.Modules.data()); }
    void PauseUntilDue();

    EngineState& Engine_;
    DataRing& Ring_;
    const StorePlan Plan_;
    std::array<std::vector<size_t>, MaxModules> Recorded_;  // the channels of each module that have samples
    int64_t Stored_ = 0;                                    // kadrs
    uint32_t Due_ = platform::TickCount();                  // ms; when the last block was complete, or should have been
};

Acquisition::Acquisition(EngineState& engine)
    : Engine_(engine), Ring_(engine.Target->Ring), Plan_(MakeStorePlan(engine, engine.Target->RecordedTable)) {
    for (const int16_t number : engine.Target->RecordedTable) {
        const auto index = static_cast<size_t>(number / ModuleChannels);
        const int channel = number % ModuleChannels;
        if (index >= engine.Opened().size() || !ChannelFitted(engine.Modules[index], channel)) continue;
        Recorded_[index].push_back(static_cast<size_t>(channel));
    }
}

void Acquisition::Run() {
    if (Engine_.MarkRef == NoMark) {
        AlignModules();
        if (Busy()) ReceiveBlock();
    } else {
        WaitStartMark();
    }
    while (Busy()) {
        ListGaps();
        StoreBlock(Plan_, Engine_.BlockKadrs, Ring_.BlockToWrite());
        Ring_.Commit(Engine_.BlockKadrs);
        Stored_ += Engine_.BlockKadrs;
        WaitForRoom();
        if (Busy()) ReceiveBlock();
    }
}

// Sleeps a little after every block, so that the host gets its time also when blocks come at once, then waits until the
// ring has room for a whole block: unread kadrs are never overwritten. A block lasts at least 50 ms, so while the ring
// is full, checking half as often is enough and takes half the processor time.
void Acquisition::WaitForRoom() {
    platform::SleepMs(PollPause);
    while (Busy() && !Ring_.Room(Engine_.BlockKadrs)) platform::SleepMs(2 * PollPause);
}

// Without a common START mark: drops what each module acquired before the last one was started.
void Acquisition::AlignModules() {
    const uint32_t reference = Engine_.UsedModules().back().StartTick;
    for (ModuleRecord& module : Engine_.UsedModules()) {
        const auto lead = static_cast<int32_t>(reference - module.StartTick);
        int32_t skip = RoundToInt32(double(lead) * double(Engine_.BlockRate) / 1000);  // kadrs
        while (skip > 0 && Busy()) {
            const int32_t part = std::min(skip, Engine_.BlockKadrs);
            Receive(module, 0, part * ModuleChannels, nullptr);
            skip -= part;  // whatever came of it
        }
    }
}

// Drops everything before the first kadr that carries a new START mark, in every module. Ends with each used module's
// first block received, or early when the recording is stopped.
void Acquisition::WaitStartMark() {
    bool pending = true;
    while (Busy() && pending) {
        pending = false;
        for (ModuleRecord& module : Engine_.UsedModules()) {
            if (module.Received != 0) continue;
            int32_t words = ReceiveWholeKadrs(module, Engine_.MarkBuffer.data());
            if (!Busy()) return;
            int32_t start = FindStartMark(words);
            if (start < words) {
                DropWords(words, start);
                CompleteBlock(module, words);
            }
            if (module.Received == 0) pending = true;
        }
        if (pending) platform::SleepMs(PollPause);
    }
}

// First word of the first kadr with a new START mark; `words` or more when there is none.
int32_t Acquisition::FindStartMark(int32_t words) const {
    const auto old = static_cast<uint32_t>(Engine_.MarkRef);
    int32_t word = 0;
    while (word < words && (Engine_.MarkBuffer[static_cast<size_t>(word)] & StartMarkBits) == old) {
        word += ModuleChannels;
    }
    return word;
}

void Acquisition::ReceiveBlock() {
    bool delivered = false;
    for (ModuleRecord& module : Engine_.UsedModules()) {
        module.Received = module.Measured = 0;
        module.Missing = GapReason::NothingCame;
        const int32_t words = ReceiveWholeKadrs(module, nullptr);
        if (words > 0) {
            CompleteBlock(module, words);
            delivered = true;
        }
        if (!Busy()) return;
    }
    if (delivered) {
        Due_ = platform::TickCount();
    } else {
        PauseUntilDue();
    }
}

// Waits until the next block is due. Where every receive fails at once, nothing else slows the loop down, and the ring
// would fill with repeated blocks in no time. Blocks are due at the recording's rate, however long each of them takes.
// A delay of up to a second is caught up; a longer one comes from a host that did not read, or from receives that timed
// out, and is not.
void Acquisition::PauseUntilDue() {
    constexpr int32_t LongestDelay = 1000;  // ms
    Due_ += static_cast<uint32_t>(RoundToInt32(Engine_.BlockKadrs * 1000.0 / Engine_.BlockRate));
    const auto late = [&] { return static_cast<int32_t>(platform::TickCount() - Due_); };
    if (late() > LongestDelay) Due_ = platform::TickCount();
    while (Busy() && late() < 0) platform::SleepMs(PollPause);
}

// Receives up to `count` words into the receive buffer, from index `from` on, and their time marks where these are
// asked for. Words received; 0 also when the receive failed.
int32_t Acquisition::Receive(ModuleRecord& module, int32_t from, int32_t count, uint32_t* marks) {
    uint32_t* data = Engine_.ReceiveBuffer.data() + from;
    const int32_t came = Engine_.ModuleApi.RecvWithMarks(module.Handle, data, marks, static_cast<uint32_t>(count),
                                                         static_cast<uint32_t>(Engine_.RecvTimeout));
    const int32_t words = std::clamp(came, 0, count);
    module.StreamWords += static_cast<uint32_t>(words);
    return words;
}

// Receives up to one block, which begins with a kadr's first word. Where the receive before ended inside a kadr, that
// kadr has been filled up and stored already; its late words are dropped, so that every channel keeps its position.
int32_t Acquisition::ReceiveWholeKadrs(ModuleRecord& module, uint32_t* marks) {
    const auto late = static_cast<int32_t>((0u - module.StreamWords) % ModuleChannels);
    int32_t words = Receive(module, 0, Engine_.BlockWords, marks);
    DropWords(words, std::min(late, words));
    return words;
}

// Moves what follows the first `count` words of the receive and mark buffers to their start.
void Acquisition::DropWords(int32_t& words, int32_t count) {
    if (count == 0) return;
    words -= count;
    const size_t bytes = static_cast<size_t>(words) * sizeof(uint32_t);
    std::memmove(Engine_.ReceiveBuffer.data(), Engine_.ReceiveBuffer.data() + count, bytes);
    std::memmove(Engine_.MarkBuffer.data(), Engine_.MarkBuffer.data() + count, bytes);
}

// Makes the module's block from the `words`, one at least, in the receive buffer, after one more try to receive the
// missing ones. What doesn't come is filled in with mid-scale, sample 0. When it comes later after all, it follows what
// was filled in, and the module's time axis is shifted by as much. Where a block can't be processed, the previous one
// stays.
void Acquisition::CompleteBlock(ModuleRecord& module, int32_t words) {
    if (words < Engine_.BlockWords) {
        words += Receive(module, words, Engine_.BlockWords - words, nullptr);
    }
    auto size = static_cast<uint32_t>(words);
    if (!Engine_.ModuleApi.ProcessData(module.Handle, Engine_.ReceiveBuffer.data(), module.Block.data(), size,
                                       TLTR27API::Calibrate, TLTR27API::KeepCodes)) {
        module.Missing = GapReason::NotProcessed;
        return;
    }
    const auto values = static_cast<size_t>(std::clamp(static_cast<int32_t>(size), 0, words));
    std::fill(module.Block.begin() + static_cast<ptrdiff_t>(values), module.Block.end(), double(MidScale));
    module.Received = Engine_.BlockWords;
    module.Measured = WholeKadrs(module, values);
    module.Missing = GapReason::CutShort;
}

// Kadrs of which all recorded channels are among the block's first `values` values. The last kadr may be cut
// after them.
int32_t Acquisition::WholeKadrs(const ModuleRecord& module, size_t values) const {
    const std::vector<size_t>& recorded = Recorded_[IndexOf(module)];
    const size_t beyond = recorded.empty() ? 0 : ModuleChannels - 1 - recorded.back();
    return static_cast<int32_t>((values + beyond) / ModuleChannels);
}

// Called before the block becomes visible to the reader: a kadr that was not measured is listed before it can be read.
void Acquisition::ListGaps() {
    for (const ModuleRecord& module : Engine_.UsedModules()) ListGapsOf(module);
}

// Where a calibration is senseless the library gives NaN or infinity and reports success. The sample is then the lowest
// or the highest, which a channel can also measure: only the list tells.
void Acquisition::ListGapsOf(const ModuleRecord& module) {
    GapList& gaps = Engine_.Target->Gaps;
    const std::vector<size_t>& recorded = Recorded_[IndexOf(module)];
    const auto number = static_cast<int32_t>(IndexOf(module));
    const bool numbers = AllNumbers(module.Block.data(), module.Measured);
    for (int32_t kadr = 0; !numbers && kadr < module.Measured; kadr++) {
        const double* values = module.Block.data() + ptrdiff_t{kadr} * ModuleChannels;
        const auto measured = [&](size_t channel) { return std::isfinite(values[channel]); };
        if (std::ranges::all_of(recorded, measured)) continue;
        gaps.Add({number, Stored_ + kadr, 1, GapReason::NotProcessed});
    }
    const int32_t missing = Engine_.BlockKadrs - module.Measured;
    if (missing > 0) gaps.Add({number, Stored_ + module.Measured, missing, module.Missing});
}

}  // namespace

void AcquisitionThread(void* engineState) {
    auto& engine = *static_cast<EngineState*>(engineState);
    if (!engine.Started) return;
    try {
        Acquisition(engine).Run();
    } catch (...) {
        // Only making the plan of the channels can throw, for lack of memory; the recording then ends before its first
        // block.
    }
    StopAllModules(engine);
}

}  // namespace corvane
