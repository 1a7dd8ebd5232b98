// The smallest and largest sample of every channel over time, for the plot: a fixed number of bins of equal width. Once
// they run out, neighbours are merged and the width doubles, so memory stays the same however long the recording.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace corvane::recorder {

struct Extent {
    int16_t Min = INT16_MAX;
    int16_t Max = INT16_MIN;

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

    explicit Envelope(size_t channels) : Channels_(channels), Extents_(Capacity * channels) {}

    // Whole kadrs, one after another.
    void Add(std::span<const int16_t> samples);

    size_t Bins() const { return Bins_; }
    int64_t BinKadrs() const { return BinKadrs_; }  // kadrs of every bin but the last, which may not be full yet
    int64_t Kadrs() const { return Kadrs_; }
    Extent At(size_t channel, size_t bin) const { return Extents_[bin * Channels_ + channel]; }
    Extent Total(size_t channel) const;

private:
    void MergePairs();

    size_t Channels_;
    size_t Bins_ = 0;
    int64_t BinKadrs_ = 1;
    int64_t Kadrs_ = 0;
    std::vector<Extent> Extents_;  // the channels of one bin are adjacent
};

}  // namespace corvane::recorder
