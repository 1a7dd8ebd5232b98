#include "recorder/recorded_gaps.h"

#include <algorithm>

#include "recorder/taken_kadrs.h"

namespace corvane::recorder {

std::vector<Gap> GapsWithin(std::span<const Gap> gaps, int64_t from, int64_t to) {
    std::vector<Gap> within;
    for (const Gap& gap : gaps) {
        const int64_t first = std::max(gap.First, from);
        const int64_t last = std::min(gap.First + gap.Kadrs, to);
        if (first < last) within.push_back({gap.Module, first, last - first, gap.Reason});
    }
    return within;
}

std::span<const uint8_t> RecordedGaps::Add(int64_t kadrs, std::span<const Gap> listed) {
    const int64_t end = Kadrs_ + kadrs;
    Missing_.assign(static_cast<size_t>(kadrs), NeverMeasured);
    Newest_.clear();
    for (const Gap& gap : listed) {
        // The part in these kadrs. What lies before is kept already, and stays as it was known then: a full list of the
        // driver stretches its last gaps back over kadrs that were measured.
        const int64_t first = std::max(gap.First, Kadrs_);
        const int64_t last = std::min(gap.First + gap.Kadrs, end);
        if (first >= last) continue;
        for (int64_t kadr = first; kadr < last; kadr++) {
            Missing_[static_cast<size_t>(kadr - Kadrs_)] |= MissingBit(gap.Module);
        }
        Keep({gap.Module, first, last - first, gap.Reason});
        if (last == end) Newest_.push_back(gap);
    }
    Kadrs_ = end;
    return Missing_;
}

std::optional<GapReason> RecordedGaps::NewestReason(int32_t module) const {
    for (const Gap& gap : Newest_) {
        if (gap.Module == module) return gap.Reason;
    }
    return std::nullopt;
}

void RecordedGaps::Keep(const Gap& gap) {
    const auto last =
        std::find_if(Gaps_.rbegin(), Gaps_.rend(), [&](const Gap& kept) { return kept.Module == gap.Module; });
    if (last != Gaps_.rend() && last->Reason == gap.Reason && last->First + last->Kadrs == gap.First) {
        last->Kadrs += gap.Kadrs;
    } else if (last == Gaps_.rend() || Gaps_.size() < KeptMax) {
        Gaps_.push_back(gap);
    } else {
        last->Kadrs = gap.First + gap.Kadrs - last->First;
        last->Reason = GapReason::Various;
    }
}

}  // namespace corvane::recorder
