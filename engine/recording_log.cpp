#include "engine/recording_log.h"

#include <algorithm>

#include "platform/event_log.h"

namespace corvane {

namespace {

constexpr size_t GapsLogged = 100;  // of one recording

// "0-15,17"
std::string ChannelList(const std::vector<int16_t>& table) {
    std::string list;
    for (size_t first = 0; first < table.size();) {
        size_t next = first + 1;
        while (next < table.size() && table[next] == table[next - 1] + 1) next++;
        list += (list.empty() ? "" : ",") + std::to_string(table[first]);
        if (next > first + 1) list += "-" + std::to_string(table[next - 1]);
        first = next;
    }
    return list;
}

}  // namespace

void LogStarted(EngineState& engine, const CrateInfo& crate) {
    const InputState& input = *engine.Target;
    engine.EndToLog = true;
    platform::LogEvent([&] {
        return "recording: channels " + ChannelList(input.ChTable) + " at " + std::to_string(engine.BlockRate) +
               " Hz, ring of " + std::to_string(input.InputSizeKadrs) + " kadrs, blocks of " +
               std::to_string(engine.BlockKadrs) + ", time-out " + std::to_string(engine.RecvTimeout) +
               " ms, START mark mode " + std::to_string(crate.MarkSTARTMode) +
               (engine.MarkRef == NoMark ? ", no mark made" : ", waits for the mark");
    });
}

void LogEnded(EngineState& engine) {
    if (!engine.EndToLog || engine.Thread.Running()) return;
    engine.EndToLog = false;
    platform::LogEvent([&] {
        const InputState& input = *engine.Target;
        const std::vector<Gap> gaps = input.Gaps.Gaps();
        for (size_t i = 0; i < std::min(gaps.size(), GapsLogged); i++) {
            const ModuleRecord& module = engine.Modules[static_cast<size_t>(gaps[i].Module)];
            platform::AppendToLog("gap: slot " + std::to_string(module.Slot) + ", " + std::to_string(gaps[i].Kadrs) +
                                  " kadrs from " + std::to_string(gaps[i].First) + ": " + ReasonText(gaps[i].Reason));
        }
        return "recording ended: " + std::to_string(input.Ring.KadrsRecorded()) + " kadrs, of which the host has " +
               std::to_string(input.Ring.KadrsRead()) + "; gaps: " + std::to_string(gaps.size());
    });
}

}  // namespace corvane
