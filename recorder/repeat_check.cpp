#include "recorder/repeat_check.h"

#include <algorithm>

namespace corvane::recorder {
namespace {

constexpr double BlockSeconds = 0.05;  // the driver's blocks are the smallest power of two of kadrs that lasts so long
constexpr int ModuleChannels = 16;     // channel numbers of one module
constexpr int16_t NeverFilled = -16384;  // what the driver gives for a module that has not sent anything yet

}  // namespace

RepeatCheck::RepeatCheck(std::span<const Channel> channels, double rate) : Columns_(channels.size()) {
    while (static_cast<double>(BlockKadrs_) / rate < BlockSeconds) BlockKadrs_ *= 2;
    for (size_t column = 0; column < Columns_; column++) {
        const bool sameModule =
            column > 0 && channels[column].Number / ModuleChannels == channels[column - 1].Number / ModuleChannels;
        if (!sameModule) Modules_.push_back({column, column});
        Modules_.back().End = column + 1;
    }
    Block_.reserve(BlockKadrs_ * Columns_);
    Previous_.reserve(BlockKadrs_ * Columns_);
}

void RepeatCheck::Add(std::span<const int16_t> samples) {
    while (!samples.empty()) {
        const size_t count = std::min(samples.size(), BlockKadrs_ * Columns_ - Block_.size());
        Block_.insert(Block_.end(), samples.begin(), samples.begin() + static_cast<ptrdiff_t>(count));
        samples = samples.subspan(count);
        if (Block_.size() < BlockKadrs_ * Columns_) return;
        for (Module& module : Modules_) {
            if (FilledIn(module)) module.FilledIn += static_cast<int64_t>(BlockKadrs_);
        }
        std::swap(Previous_, Block_);
        Block_.clear();
    }
}

int64_t RepeatCheck::FilledInKadrs() const {
    int64_t most = 0;
    for (const Module& module : Modules_) most = std::max(most, module.FilledIn);
    return most;
}

bool RepeatCheck::FilledIn(const Module& module) const {
    bool neverFilled = true;
    bool oneKadr = true;  // the same all over the block
    bool repeated = !Previous_.empty();
    for (size_t start = 0; start < Block_.size(); start += Columns_) {
        for (size_t i = start + module.First; i < start + module.End; i++) {
            neverFilled = neverFilled && Block_[i] == NeverFilled;
            oneKadr = oneKadr && Block_[i] == Block_[i - start];
            repeated = repeated && Block_[i] == Previous_[i];
        }
    }
    return neverFilled || (repeated && !oneKadr);
}

}  // namespace corvane::recorder
