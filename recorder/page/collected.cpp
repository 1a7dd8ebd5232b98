#include "recorder/page/collected.h"

#include <algorithm>
#include <future>
#include <limits>

namespace corvane::recorder {
namespace {

constexpr size_t ExtremesMax = 28 * 1024 * 1024 / sizeof(Extremes::Pair);  // of all columns

bool Has(Columns columns, size_t column) {
    return (columns >> column & 1) != 0;
}

// Calls for each number below `count`, half of them on a thread of its own.
template <class Function>
void Share(size_t count, const Function& function) {
    const auto half = [&](size_t first) {
        for (size_t i = first; i < count; i += 2) function(i);
    };
    std::future<void> other = std::async(std::launch::async, half, size_t{1});
    half(0);
    other.get();
}

// What a mask packs of a bin.
constexpr int32_t Nothing = 1, Something = 0;

size_t SizeOf(const std::vector<PackedNumbers>& packed) {
    size_t size = 0;
    for (const PackedNumbers& each : packed) size += each.Size();
    return size;
}

}  // namespace

Collected::Collected(ColumnPlan plan, size_t bytesMax, int64_t samplesMax)
    : Plan_(std::move(plan)),
      BytesMax_(bytesMax),
      SamplesMax_(samplesMax),
      Totals_(Plan_.Count),
      Sums_(Plan_.Count),
      Extremes_(Plan_.Count, ExtremesMax / Plan_.Count, Plan_.Kadrs),
      Last_(Plan_.Count) {
    for (size_t i = 0; i < Plan_.Count; i++) Samples_.emplace_back(Plan_.SampleBytes);
    for (size_t i = 0; i < Plan_.MaskCount; i++) Masks_.emplace_back(1);
}

template <class Sample>
void Collected::Add(const KadrBlock<Sample>& block) {
    std::span<const Sample> rest = block.Samples;
    for (const MissingRun& run : block.Runs) {
        EverMissing_ |= run.Missing;
        for (int64_t left = run.Kadrs; left > 0;) {
            const int64_t kadrs = std::min({left, Extremes_.Room(), static_cast<int64_t>(SumRowsMax)});
            const size_t samples = static_cast<size_t>(kadrs) * Plan_.Count;
            AddSums(rest.first(samples), kadrs, run.Missing | Plan_.Never);
            rest = rest.subspan(samples);
            left -= kadrs;
        }
        Kadrs_ += run.Kadrs;
    }
    const bool few = Kadrs_ * static_cast<int64_t>(Plan_.Count) <= SamplesMax_;
    if (few && !Samples_.empty()) Pack(block);
    if (few && SizeOf(Samples_) + SizeOf(Masks_) <= BytesMax_) return;
    Samples_.clear();
    Masks_.clear();
}

template <class Sample>
void Collected::AddSums(std::span<const Sample> samples, int64_t kadrs, Columns missing) {
    SumColumns(samples, Sums_);
    Extremes_.Add(kadrs, Sums_, missing);
    for (size_t column = 0; column < Plan_.Count; column++) {
        if (Has(missing, column)) continue;
        Totals_[column].Sums.Add(Sums_[column]);
        constexpr Sample Lowest = std::numeric_limits<Sample>::min(), Highest = std::numeric_limits<Sample>::max();
        if (Sums_[column].Min > Lowest && Sums_[column].Max < Highest) continue;
        for (size_t i = column; i < samples.size(); i += Plan_.Count) {
            if (samples[i] == Lowest || samples[i] == Highest) Totals_[column].AtLimits++;
        }
    }
}

// In place of what was not measured stands the last sample that was: it takes no room, and can't be mistaken for data
// by whoever forgets the mask.
template <class Sample>
void Collected::Pack(const KadrBlock<Sample>& block) {
    Share(Plan_.Count, [&](size_t column) {
        if (Has(Plan_.Never, column)) return;
        std::vector<int32_t> numbers;
        numbers.reserve(block.Samples.size() / Plan_.Count);
        size_t place = column;
        for (const MissingRun& run : block.Runs) {
            const bool measured = !Has(run.Missing, column);
            for (int64_t i = 0; i < run.Kadrs; i++, place += Plan_.Count) {
                if (measured) Last_[column] = block.Samples[place];
                numbers.push_back(Last_[column]);
            }
        }
        Samples_[column].Add(numbers);
    });
    std::vector<int32_t> numbers;
    for (size_t mask = 0; mask < Plan_.MaskCount; mask++) {
        const auto column = static_cast<size_t>(std::ranges::find(Plan_.Masks, mask) - Plan_.Masks.begin());
        numbers.clear();
        for (const MissingRun& run : block.Runs) {
            numbers.insert(numbers.end(), static_cast<size_t>(run.Kadrs),
                           Has(run.Missing, column) ? Nothing : Something);
        }
        Masks_[mask].Add(numbers);
    }
}

template void Collected::Add(const KadrBlock<int16_t>&);
template void Collected::Add(const KadrBlock<int32_t>&);

PageData Collected::Finish(size_t bytesMax) {
    PageData data;
    if (!Samples_.empty()) {
        data = PackedSamples();
        Samples_.clear();
        Masks_.clear();
        if (data.Size <= bytesMax) return data;
    }
    for (data = PackedExtremes(); data.Size > bytesMax && data.Bins > 1; data = PackedExtremes()) {
        data = {};  // both at once would take too much memory
        Extremes_.MergePairs();
    }
    return data;
}

// A page without the masks that say nothing, and of each column whether it has data.
template <class PackColumn, class PackMask>
PageData Collected::Packed(const PackColumn& packColumn, const PackMask& packMask) const {
    PageData data;
    data.Numbers.resize(Plan_.Count);
    data.Masks.resize(Plan_.MaskCount);
    const auto measured = [&](size_t column) { return Totals_[column].Sums.Count > 0; };
    Share(Plan_.Count, [&](size_t column) {
        if (measured(column)) data.Numbers[column] = packColumn(column);
    });
    for (size_t column = 0; column < Plan_.Count; column++) {
        const size_t mask = Plan_.Masks[column];
        if (measured(column) && Has(EverMissing_, column) && data.Masks[mask].empty())
            data.Masks[mask] = packMask(column);
    }
    for (const std::vector<Pieces>* all : {&data.Numbers, &data.Masks}) {
        for (const Pieces& pieces : *all) {
            for (const std::string& piece : pieces) data.Size += piece.size();
        }
    }
    return data;
}

PageData Collected::PackedSamples() {
    PageData data = Packed([&](size_t column) { return Samples_[column].Finish(); },
                           [&](size_t column) { return Masks_[Plan_.Masks[column]].Finish(); });
    data.Bins = Kadrs_;
    return data;
}

PageData Collected::PackedExtremes() const {
    // Where nothing was measured, the bin before stands, as it does for samples.
    const auto add = [&](PackedNumbers& packed, size_t column, auto&& numberOf) {
        std::vector<int32_t> numbers(Extremes_.Bins());
        Extremes::Pair last{0, 0};
        for (size_t bin = 0; bin < numbers.size(); bin++) {
            const Extremes::Pair& pair = Extremes_.At(bin, column);
            if (!pair.Empty()) last = pair;
            numbers[bin] = numberOf(last, pair.Empty());
        }
        packed.Add(numbers);
        packed.EndSeries();
    };
    const auto packColumn = [&](size_t column) {
        PackedNumbers packed(Plan_.SampleBytes);
        add(packed, column, [](const Extremes::Pair& pair, bool) { return pair.Min; });
        add(packed, column, [](const Extremes::Pair& pair, bool) {
            return static_cast<int32_t>(static_cast<uint32_t>(pair.Max) - static_cast<uint32_t>(pair.Min));
        });
        return packed.Finish();
    };
    const auto packMask = [&](size_t column) {
        PackedNumbers packed(1);
        add(packed, column, [](const Extremes::Pair&, bool empty) { return empty ? Nothing : Something; });
        return packed.Finish();
    };
    PageData data = Packed(packColumn, packMask);
    data.BinKadrs = Extremes_.BinKadrs();
    data.Bins = static_cast<int64_t>(Extremes_.Bins());
    return data;
}

}  // namespace corvane::recorder
