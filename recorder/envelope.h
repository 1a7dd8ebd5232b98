// The smallest and largest sample of every channel over time, for the plot: a fixed number of bins of equal width. Once
// they run out, neighbours are merged and the width doubles, so memory stays the same however long the recording.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "recorder/taken_kadrs.h"

namespace corvane::recorder {

// Empty while nothing is included.
struct Extent {
    int16_t Min = INT16_MAX;
    int16_t Max = INT16_MIN;

    bool Empty() const { return Min > Max; }
    void Include(Extent other) {
        Min = other.Min < Min ? other.Min : Min;
        Max = other.Max > Max ? other.Max : Max;
    }
};

class Envelope {
public:
    // In a long recording at least half of them are in use, about one for each pixel of the plot. Even, so that pairs
    // can be merged.
    static constexpr size_t Capacity = 1600;

    // `missingBits` are those of each channel.
    explicit Envelope(std::vector<uint8_t> missingBits)
        : Channels_(missingBits.size()), MissingBits_(std::move(missingBits)), Extents_(Capacity * Channels_) {}

    // Samples that were not measured are left out.
    void Add(const TakenKadrs& kadrs);

    size_t Bins() const { return Bins_; }
    int64_t BinKadrs() const { return BinKadrs_; }  // kadrs of every bin but the last, which may not be full yet
    int64_t Kadrs() const { return Kadrs_; }
    Extent At(size_t channel, size_t bin) const { return Extents_[bin * Channels_ + channel]; }
    Extent Total(size_t channel) const;

private:
    void MergePairs();

    size_t Channels_;
    std::vector<uint8_t> MissingBits_;
    size_t Bins_ = 0;
    int64_t BinKadrs_ = 1;
    int64_t Kadrs_ = 0;
    std::vector<Extent> Extents_;  // the channels of one bin are adjacent
};

}  // namespace corvane::recorder
