#include "recorder/envelope.h"

#include <algorithm>

namespace corvane::recorder {

void Envelope::Add(const TakenKadrs& kadrs) {
    for (size_t kadr = 0; (kadr + 1) * Channels_ <= kadrs.Samples.size(); kadr++) {
        if (Kadrs_ == static_cast<int64_t>(Bins_) * BinKadrs_) {
            if (Bins_ == Capacity) MergePairs();
            std::fill_n(Extents_.begin() + static_cast<ptrdiff_t>(Bins_ * Channels_), Channels_, Extent{});
            Bins_++;
        }
        const uint8_t missing = kadrs.Missing.empty() ? uint8_t{0} : kadrs.Missing[kadr];
        Extent* bin = &Extents_[(Bins_ - 1) * Channels_];
        for (size_t channel = 0; channel < Channels_; channel++) {
            const int16_t sample = kadrs.Samples[kadr * Channels_ + channel];
            if ((missing & MissingBits_[channel]) == 0) bin[channel].Include({sample, sample});
        }
        Kadrs_++;
    }
}

Extent Envelope::Total(size_t channel) const {
    Extent total;
    for (size_t bin = 0; bin < Bins_; bin++) total.Include(At(channel, bin));
    return total;
}

void Envelope::MergePairs() {
    for (size_t bin = 0; bin < Capacity / 2; bin++) {
        for (size_t channel = 0; channel < Channels_; channel++) {
            Extent merged = At(channel, 2 * bin);
            merged.Include(At(channel, 2 * bin + 1));
            Extents_[bin * Channels_ + channel] = merged;
        }
    }
    Bins_ = Capacity / 2;
    BinKadrs_ *= 2;
}

}  // namespace corvane::recorder
