#include "driver/model/gap_list.h"

#include <algorithm>
#include <mutex>

#include "driver/model/engine_state.h"

namespace corvane {

void GapList::Reserve() {
    const std::lock_guard lock(Lock_);
    // A full list still takes the first gap of every module.
    Gaps_.reserve(Capacity + MaxModules);
}

void GapList::Clear() {
    const std::lock_guard lock(Lock_);
    Gaps_.clear();
}

void GapList::Add(const Gap& gap) {
    const std::lock_guard lock(Lock_);
    const auto last =
        std::find_if(Gaps_.rbegin(), Gaps_.rend(), [&](const Gap& each) { return each.Module == gap.Module; });
    if (last == Gaps_.rend()) {
        Gaps_.push_back(gap);
    } else if (last->Reason == gap.Reason && last->First + last->Kadrs == gap.First) {
        last->Kadrs += gap.Kadrs;
    } else if (Gaps_.size() < Capacity) {
        Gaps_.push_back(gap);
    } else {
        last->Kadrs = gap.First + gap.Kadrs - last->First;
        last->Reason = GapReason::Various;
    }
}

std::vector<Gap> GapList::Gaps() const {
    const std::lock_guard lock(Lock_);
    return Gaps_;
}

}  // namespace corvane
