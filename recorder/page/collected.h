// What a report keeps of a recording that it reads once, in memory that does not grow with it.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "recorder/page/column_sums.h"
#include "recorder/page/extremes.h"
#include "recorder/page/kadr_block.h"
#include "recorder/page/packed_numbers.h"

namespace corvane::recorder {

struct ColumnTotals {
    ColumnSums Sums;
    int64_t AtLimits = 0;  // samples of the lowest or the highest code
};

// The samples of a page, or their extremes.
struct PageData {
    int64_t BinKadrs = 1;  // kadrs of a bin; 1: the samples themselves
    int64_t Bins = 0;
    std::vector<Pieces> Numbers;  // of each column: samples, or minima and then the distances to the maxima; or none
    std::vector<Pieces> Masks;    // 1 for each bin in which nothing was measured; none: all was
    size_t Size = 0;              // bytes of all of them
};

// How a recording's columns belong together.
struct ColumnPlan {
    size_t Count = 0;
    int SampleBytes = 2;
    std::vector<size_t> Masks;  // of each column: which mask tells what was not measured
    size_t MaskCount = 0;
    Columns Never = 0;  // columns in which nothing can be measured
    int64_t Kadrs = 0;  // as many as will probably come; 0: unknown
};

class Collected {
public:
    // Samples are packed as long as they take no more than `bytesMax`, and are no more than `samplesMax`.
    Collected(ColumnPlan plan, size_t bytesMax, int64_t samplesMax);

    // The kadrs that follow those before.
    template <class Sample>
    void Add(const KadrBlock<Sample>& block);

    int64_t Kadrs() const { return Kadrs_; }
    const ColumnPlan& Plan() const { return Plan_; }
    const std::vector<ColumnTotals>& Totals() const { return Totals_; }
    // To be called once. The samples, if they take no more than `bytesMax`, or extremes that do so.
    PageData Finish(size_t bytesMax);

private:
    template <class Sample>
    void AddSums(std::span<const Sample> samples, int64_t kadrs, Columns missing);
    template <class Sample>
    void Pack(const KadrBlock<Sample>& block);
    template <class PackColumn, class PackMask>
    PageData Packed(const PackColumn& packColumn, const PackMask& packMask) const;
    PageData PackedSamples();
    PageData PackedExtremes() const;

    ColumnPlan Plan_;
    size_t BytesMax_;
    int64_t SamplesMax_;
    int64_t Kadrs_ = 0;
    std::vector<ColumnTotals> Totals_;
    std::vector<ColumnSums> Sums_;  // of a few kadrs
    Extremes Extremes_;
    std::vector<PackedNumbers> Samples_;  // of each column, while there is room
    std::vector<PackedNumbers> Masks_;
    std::vector<int32_t> Last_;  // sample measured
    Columns EverMissing_ = 0;
};

}  // namespace corvane::recorder
