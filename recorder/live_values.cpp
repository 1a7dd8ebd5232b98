#include "recorder/live_values.h"

#include <algorithm>

namespace corvane::recorder {
namespace {

constexpr double GapShown = 2;  // s

}  // namespace

LiveValues::LiveValues(const RecordingTask& task)
    : Task_(task), MissingBits_(MissingBits(task.Channels)), SinceLook_(task.Channels.size()) {
    for (const Channel& channel : task.Channels) Channels_.push_back({channel, std::nullopt, {}});
}

void LiveValues::Add(const TakenKadrs& kadrs) {
    const size_t count = Channels_.size();
    for (size_t kadr = 0; kadr < kadrs.Missing.size(); kadr++) {
        const uint8_t missing = kadrs.Missing[kadr];
        Kadrs_++;
        for (const RecordedModule& module : Task_.Modules) {
            if ((missing & MissingBit(module.Index)) == 0) continue;
            LastMissing_[module.Index] = Kadrs_;
            Missing_++;
        }
        for (size_t i = 0; i < count; i++) {
            Channels_[i].Newest.reset();
            if ((missing & MissingBits_[i]) != 0) continue;
            const int16_t sample = kadrs.Samples[kadr * count + i];
            Channels_[i].Newest = sample;
            SinceLook_[i].Include({sample, sample});
        }
    }
}

std::vector<LiveChannel> LiveValues::Look(const RecordedGaps& gaps, bool silent) {
    for (size_t i = 0; i < Channels_.size(); i++) {
        Channels_[i].Total.Include(SinceLook_[i]);
        Channels_[i].Mark = MarkOf(i, gaps, silent);
        if (silent) Channels_[i].Newest.reset();
        SinceLook_[i] = {};
    }
    return Channels_;
}

Text LiveValues::MarkOf(size_t channel, const RecordedGaps& gaps, bool silent) const {
    if (!Channels_[channel].Channel.Fitted()) return "empty";
    const int32_t module = Channels_[channel].Channel.Number / ModuleChannels;
    const std::optional<GapReason> reason = gaps.NewestReason(module);
    if (silent || reason == GapReason::NothingCame || reason == GapReason::NotProcessed) return "silent";
    const Extent& seen = SinceLook_[channel];
    if (seen.Min <= LiveChannel::Lowest) return "low";
    if (seen.Max >= LiveChannel::Highest) return "high";
    const int64_t last = LastMissing_[module];
    return last > 0 && static_cast<double>(Kadrs_ - last) < GapShown * Task_.Rate ? Text("gap") : Text();
}

}  // namespace corvane::recorder
