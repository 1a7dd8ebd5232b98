#include "recorder/data_check.h"

#include "recorder/messages.h"

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
        doubts.push_back(lead < 0 ? SayIn(Language::English,
                                          "doubtful: the kadrs were up to {:.1f} s behind this computer's clock, so "
                                          "times may be wrong by as much, or kadrs be missing",
                                          -lead)
                                  : SayIn(Language::English,
                                          "doubtful: the kadrs were up to {:.1f} s ahead of this computer's clock, so "
                                          "times may be wrong by as much",
                                          lead));
    }
    if (RingFull_) {
        doubts.push_back(
            SayIn(Language::English,
                  "doubtful: the driver's ring was full, this computer was too slow and kadrs may be missing"));
    }
    return doubts;
}

}  // namespace corvane::recorder
