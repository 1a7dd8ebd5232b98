// The engine of one host thread: its opened modules and its recording. Whoever changes anything but Busy first makes
// sure that no recording thread runs.
#pragma once

#include <atomic>
#include <cstdint>
#include <span>
#include <vector>

#include "driver/model/module_record.h"
#include "hardware/TLTR27API.h"
#include "hardware/TLTRAPI.h"
#include "platform/threads.h"

namespace corvane {

struct InputState;

constexpr int MaxModules = 2;                   // modules of one crate that are opened
constexpr uint32_t StartMarkBits = 0xFFFF0000;  // the part of a time mark that counts START marks
constexpr int32_t NoMark = -1;                  // MarkRef when no START mark was made

struct EngineState {
    TLTR27API ModuleApi;
    TLTRAPI CrateApi;

    std::atomic<bool> Busy = false;  // a request: the host clears it to stop, the thread when it ends
    platform::Thread Thread;         // a fact: tells whether the recording thread has ended
    bool Started = false;            // set before the thread is resumed: its modules run, and it stops them at its end

    bool EndToLog = false;  // the start of the last recording has been logged, its end has not

    std::vector<ModuleRecord> Modules;  // one per module of the chosen crate; only the first OpenedCount are open
    int16_t OpenedCount = 0;

    int16_t FirstUsed = 0;  // lowest and highest index of a module that takes part in the recording
    int16_t LastUsed = -1;
    int32_t BlockKadrs = 0;        // kadrs per block, a power of two from 1 to 64
    int32_t BlockWords = 0;        // words per module and block
    int32_t RecvTimeout = 0;       // ms
    float BlockRate = 0;           // Hz, effective rate of the recording
    int32_t MarkRef = NoMark;      // upper half: the crate's count of START marks before the recording; lower half 0
    InputState* Target = nullptr;  // where the recording thread stores
    std::vector<uint32_t> ReceiveBuffer;  // raw words of one module
    std::vector<uint32_t> MarkBuffer;     // their time marks

    std::span<ModuleRecord> Opened() { return {Modules.data(), static_cast<size_t>(OpenedCount)}; }
    std::span<const ModuleRecord> Opened() const { return {Modules.data(), static_cast<size_t>(OpenedCount)}; }
    // Those that take part in the recording.
    std::span<ModuleRecord> UsedModules() {
        static_assert(MaxModules == 2, "of more, one between the first and the last may be unused");
        if (LastUsed < FirstUsed) return {};
        return {Modules.data() + FirstUsed, static_cast<size_t>(LastUsed - FirstUsed + 1)};
    }
};

}  // namespace corvane
