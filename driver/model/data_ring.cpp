#include "driver/model/data_ring.h"

#include <algorithm>
#include <cstring>
#include <limits>

namespace corvane {

bool DataRing::ResetInputBuffer(int32_t channels, int32_t kadrs) {
    if (channels < 1 || kadrs < 1) return false;
    // The host counts samples in signed 32-bit numbers.
    if (int64_t{channels} * kadrs > std::numeric_limits<int32_t>::max()) return false;
    const size_t samples = static_cast<size_t>(channels) * static_cast<size_t>(kadrs);
    if (channels == Channels_ && kadrs == Length_) {
        std::memset(Samples_.get(), 0, samples * sizeof(int16_t));
    } else {
        auto* memory = static_cast<int16_t*>(std::calloc(samples, sizeof(int16_t)));
        if (memory == nullptr && CountUnreadKadrs() == 0) {
            // The old ring holds nothing to read, and a 32-bit process may have no room for both.
            Samples_.reset();
            Channels_ = Length_ = 0;
            memory = static_cast<int16_t*>(std::calloc(samples, sizeof(int16_t)));
        }
        if (memory == nullptr) return false;
        Samples_.reset(memory);
        Channels_ = channels;
        Length_ = kadrs;
    }
    ReadIndex_ = WriteIndex_ = 0;
    Written_ = Read_ = 0;
    KadrsRead_ = 0;
    return true;
}

void DataRing::Commit(int32_t kadrs) {
    WriteIndex_ += kadrs;
    if (WriteIndex_ >= Length_) WriteIndex_ = 0;
    const uint32_t written = Written_.load(std::memory_order_relaxed);
    Written_.store(written + static_cast<uint32_t>(kadrs), std::memory_order_release);
}

int32_t DataRing::Read(int16_t* destination, int32_t kadrs) {
    const int32_t wanted = std::min(kadrs, CountUnreadKadrs());
    if (wanted < 1) return 0;
    const size_t kadrBytes = static_cast<size_t>(Channels_) * sizeof(int16_t);
    const int32_t first = std::min(wanted, Length_ - ReadIndex_);
    std::memcpy(destination, Samples_.get() + Offset(ReadIndex_), static_cast<size_t>(first) * kadrBytes);
    if (wanted > first) {
        std::memcpy(destination + Offset(first), Samples_.get(), static_cast<size_t>(wanted - first) * kadrBytes);
    }
    ReadIndex_ += wanted;
    if (ReadIndex_ >= Length_) ReadIndex_ -= Length_;
    KadrsRead_ += wanted;
    const uint32_t read = Read_.load(std::memory_order_relaxed);
    Read_.store(read + static_cast<uint32_t>(wanted), std::memory_order_release);
    return wanted;
}

}  // namespace corvane
