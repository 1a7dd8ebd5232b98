// The lowest and highest sample of every column over time, in at most so many bins: once they run out, neighbours are
// merged, so memory stays the same however long the recording.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "recorder/page/column_sums.h"
#include "recorder/page/kadr_block.h"

namespace corvane::recorder {

class Extremes {
public:
    struct Pair {
        int32_t Min = INT32_MAX;
        int32_t Max = INT32_MIN;

        bool Empty() const { return Min > Max; }
    };

    // `kadrs` that will probably be added; of more, or where it is 0, neighbours are merged.
    Extremes(size_t columns, size_t binsMax, int64_t kadrs);

    // The bin of the next kadr takes so many.
    int64_t Room() const { return Kadrs_ == End() ? BinKadrs_ : End() - Kadrs_; }
    // The next kadrs, 1 to Room().
    void Add(int64_t kadrs, std::span<const ColumnSums> sums, Columns missing);
    void MergePairs();

    size_t Bins() const { return Bins_; }
    int64_t BinKadrs() const { return BinKadrs_; }  // kadrs of every bin but the last, which may not be full
    const Pair& At(size_t bin, size_t column) const { return Pairs_[bin * Columns_ + column]; }

private:
    int64_t End() const { return static_cast<int64_t>(Bins_) * BinKadrs_; }

    size_t Columns_;
    size_t BinsMax_;
    size_t Bins_ = 0;
    int64_t BinKadrs_ = 1;
    int64_t Kadrs_ = 0;
    std::vector<Pair> Pairs_;  // the columns of one bin are adjacent
};

}  // namespace corvane::recorder
