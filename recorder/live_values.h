// What a monitor knows of every channel: its newest value, and the extremes since the start. Values that the driver
// filled in are never taken for measured ones.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "recorder/envelope.h"
#include "recorder/messages.h"
#include "recorder/recorded_gaps.h"
#include "recorder/recording_task.h"
#include "recorder/taken_kadrs.h"

namespace corvane::recorder {

struct LiveChannel {
    recorder::Channel Channel;
    std::optional<int16_t> Newest;  // sample; none: not measured at present
    Extent Total;                   // since the start
    // "silent": its module sends nothing; "empty": no mezzanine; "low", "high": at the end of its range since the last
    // look; "gap": some kadrs of the last two seconds were not measured; empty: all is well.
    Text Mark{};

    static constexpr int16_t Lowest = -16384;  // samples of the ends of every range
    static constexpr int16_t Highest = 16383;
};

class LiveValues {
public:
    explicit LiveValues(const RecordingTask& task);

    void Add(const TakenKadrs& kadrs);
    // `silent`: nothing has come for a while, not even filled in.
    std::vector<LiveChannel> Look(const RecordedGaps& gaps, bool silent);

    int64_t Kadrs() const { return Kadrs_; }
    // Kadrs that modules did not measure, added up over the modules.
    int64_t Missing() const { return Missing_; }

private:
    Text MarkOf(size_t channel, const RecordedGaps& gaps, bool silent) const;

    const RecordingTask& Task_;
    std::vector<uint8_t> MissingBits_;  // of each channel
    std::vector<LiveChannel> Channels_;
    std::vector<Extent> SinceLook_;  // of each channel
    int64_t Kadrs_ = 0;
    int64_t Missing_ = 0;
    int64_t LastMissing_[ModulesMax] = {};  // kadrs up to and with the newest one that the module did not measure
};

}  // namespace corvane::recorder
