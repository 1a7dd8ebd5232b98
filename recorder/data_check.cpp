#include "recorder/data_check.h"

#include <fmt/format.h>
#include <cmath>

namespace corvane::recorder {
namespace {

constexpr int32_t BlockKadrsMax = 64;  // the driver stores no more kadrs at once

}  // namespace

DataCheck::DataCheck(const RecordingTask& task)
    : Rate_(task.Rate), DataClock_(task.Rate), RepeatCheck_(task.Channels, task.Rate) {}

void DataCheck::Observe(int64_t takenKadrs, int32_t unreadKadrs, int32_t ringKadrs, DataClock::Clock::time_point now) {
    RingFull_ = RingFull_ || unreadKadrs + BlockKadrsMax > ringKadrs;
    DataClock_.Observe(takenKadrs + unreadKadrs, now);
}

bool DataCheck::Doubtful() const {
    return DataClock_.Doubtful() || RepeatCheck_.FilledInKadrs() > 0 || RingFull_;
}

std::vector<std::string> DataCheck::Doubts() const {
    std::vector<std::string> doubts;
    if (DataClock_.Doubtful()) {
        const double lead = DataClock_.WorstLead();
        doubts.push_back(fmt::format("doubtful: the data was up to {:.1f} s {} the clock, some may be {}",
                                     std::abs(lead), lead < 0 ? "behind" : "ahead of",
                                     lead < 0 ? "missing or filled in" : "repeated"));
    }
    if (const int64_t kadrs = RepeatCheck_.FilledInKadrs(); kadrs > 0) {
        doubts.push_back(fmt::format("doubtful: a module sent nothing for {} kadrs ({:.6g} s), they were filled in",
                                     kadrs, static_cast<double>(kadrs) / Rate_));
    }
    if (RingFull_) {
        doubts.push_back("doubtful: the driver's ring was full, this computer was too slow and data may be missing");
    }
    return doubts;
}

}  // namespace corvane::recorder
