#include "recorder/thinning.h"

#include <algorithm>
#include <limits>

namespace corvane::recorder {

std::vector<Channel> ThinnedColumns(const std::vector<Channel>& channels, Thinning thinning) {
    if (thinning != Thinning::MinMax) return channels;
    std::vector<Channel> columns;
    for (const Channel& channel : channels) {
        for (const char* which : {" min", " max"}) {
            columns.push_back(channel);
            columns.back().Name += which;
        }
    }
    return columns;
}

Thinner::Thinner(const std::vector<Channel>& channels, Thinning thinning, int64_t every, int64_t first)
    : Channels_(channels),
      MissingBits_(MissingBits(channels)),
      Thinning_(thinning),
      Every_(every),
      First_(first),
      Groups_(channels.size()) {}

void Thinner::AppendRows(std::string& text, const CsvWriter& writer, const TakenKadrs& kadrs) {
    const size_t count = Channels_.size();
    for (size_t kadr = 0; (kadr + 1) * count <= kadrs.Samples.size(); kadr++) {
        const uint8_t missing = kadrs.Missing.empty() ? uint8_t{0} : kadrs.Missing[kadr];
        const bool counts = Thinning_ != Thinning::First || InGroup_ == 0;
        for (size_t channel = 0; counts && channel < count; channel++) {
            if ((missing & MissingBits_[channel]) != 0) continue;
            const int16_t sample = kadrs.Samples[kadr * count + channel];
            Group& group = Groups_[channel];
            group.Kadrs++;
            group.Sum += sample;
            group.Min = std::min(group.Min, sample);
            group.Max = std::max(group.Max, sample);
        }
        if (++InGroup_ == Every_) AppendRest(text, writer);
    }
}

void Thinner::AppendRest(std::string& text, const CsvWriter& writer) {
    if (InGroup_ == 0) return;
    Samples_.clear();
    for (size_t channel = 0; channel < Groups_.size(); channel++) {
        const Group& group = Groups_[channel];
        constexpr double None = std::numeric_limits<double>::quiet_NaN();
        const bool some = group.Kadrs > 0;
        if (Thinning_ == Thinning::MinMax) {
            // A falling scale has its lowest value where the sample is highest.
            const bool falls = Channels_[channel].Scale < 0;
            Samples_.push_back(some ? falls ? group.Max : group.Min : None);
            Samples_.push_back(some ? falls ? group.Min : group.Max : None);
        } else {
            Samples_.push_back(some ? static_cast<double>(group.Sum) / static_cast<double>(group.Kadrs) : None);
        }
    }
    writer.AppendRow(text, First_, Samples_);
    Rows_++;
    First_ += InGroup_;
    InGroup_ = 0;
    std::ranges::fill(Groups_, Group{});
}

}  // namespace corvane::recorder
