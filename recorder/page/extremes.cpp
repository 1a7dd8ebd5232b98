#include "recorder/page/extremes.h"

#include <algorithm>

namespace corvane::recorder {

Extremes::Extremes(size_t columns, size_t binsMax, int64_t kadrs)
    : Columns_(columns), BinsMax_(std::max<size_t>(binsMax, 2)) {
    while (kadrs / BinKadrs_ >= static_cast<int64_t>(BinsMax_)) BinKadrs_ *= 2;
    Pairs_.reserve((BinsMax_ + 1) * columns);
}

void Extremes::Add(int64_t kadrs, std::span<const ColumnSums> sums, Columns missing) {
    if (Kadrs_ == End()) {
        if (Bins_ >= BinsMax_ && Bins_ % 2 == 0) MergePairs();
        Bins_++;
        Pairs_.resize(Bins_ * Columns_);
    }
    Pair* pairs = &Pairs_[(Bins_ - 1) * Columns_];
    for (size_t column = 0; column < Columns_; column++) {
        if ((missing >> column & 1) != 0) continue;
        pairs[column] = {std::min(pairs[column].Min, sums[column].Min), std::max(pairs[column].Max, sums[column].Max)};
    }
    Kadrs_ += kadrs;
}

void Extremes::MergePairs() {
    for (size_t bin = 0; bin < Bins_; bin += 2) {
        const bool alone = bin + 1 == Bins_;
        for (size_t column = 0; column < Columns_; column++) {
            const Pair one = At(bin, column);
            const Pair other = alone ? Pair{} : At(bin + 1, column);
            Pairs_[bin / 2 * Columns_ + column] = {std::min(one.Min, other.Min), std::max(one.Max, other.Max)};
        }
    }
    Bins_ = (Bins_ + 1) / 2;
    BinKadrs_ *= 2;
    Pairs_.resize(Bins_ * Columns_);
}

}  // namespace corvane::recorder
