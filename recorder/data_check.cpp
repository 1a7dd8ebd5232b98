#include "recorder/data_check.h"

#include <fmt/format.h>
#include <cmath>

namespace corvane::recorder {
namespace {

constexpr int32_t BlockKadrsMax = 64;  // the driver stores no more kadrs at once

}  // namespace

void DataCheck::Observe(int64_t takenKadrs, int32_t unreadKadrs, int32_t ringKadrs, DataClock::Clock::time_point now) {
    RingFull_ = RingFull_ || unreadKadrs + BlockKadrsMax > ringKadrs;
    DataClock_.Observe(takenKadrs + unreadKadrs, now);
}

std::vector<std::string> DataCheck::Doubts() const {
    std::vector<std::string> doubts;
    if (DataClock_.Doubtful()) {
        const double lead = DataClock_.WorstLead();
        doubts.push_back(
            fmt::format("doubtful: the kadrs were up to {:.1f} s {} this computer's clock, so times may be "
                        "wrong by as much{}",
                        std::abs(lead), lead < 0 ? "behind" : "ahead of", lead < 0 ? ", or kadrs be missing" : ""));
    }
    if (RingFull_) {
        doubts.push_back("doubtful: the driver's ring was full, this computer was too slow and kadrs may be missing");
    }
    return doubts;
}

}  // namespace corvane::recorder
