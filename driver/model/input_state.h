// The host's choice of channels, rate and ring size, and the ring itself. The host's thread owns all of it; the
// recording thread touches only Ring, through the writer's side, and Gaps.
//
// Kadrs keep the shape they were recorded in. When the host selects other channels while kadrs are unread, these still
// come out with the recorded channels, and the counts and the channel numbers given with them are the recorded ones;
// the new table holds from the moment the ring is empty.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "driver/model/data_ring.h"
#include "driver/model/gap_list.h"

namespace corvane {

constexpr int32_t MinRequestedSize = 1024;  // smaller requests count as the default
constexpr int32_t DefaultRequestedSize = 32768;

struct InputState {
    std::vector<int16_t> ChTable = {0};  // selected channels, ascending
    float RateMax = 1000;                // Hz
    float RateMin = 4;                   // Hz
    float Rate = 10;                     // Hz, stored, then effective
    int32_t RequestedSize = DefaultRequestedSize;
    int32_t InputSizeData = 0;   // ring size in samples, as told to the host
    int32_t InputSizeKadrs = 0;  // ring size in kadrs, as told to the host
    DataRing Ring;
    GapList Gaps;                        // of the recording in the ring
    std::vector<int16_t> RecordedTable;  // channels of the kadrs in the ring

    int16_t InputCountChannels() const { return static_cast<int16_t>(ChTable.size()); }
};

// Computes the ring size that the host is told: newSize, or the requested size when that is too small. powerOfTwo:
// newSize counts samples and is divided by the largest power of two not above the number of channels; otherwise it
// counts kadrs. Returns InputSizeKadrs. A size beyond 32 bits is told as the largest 32-bit number.
int32_t SetInputSize(InputState& input, bool powerOfTwo, int32_t newSize);

// Sizes and clears the ring for a recording in blocks of blockKadrs; the ring becomes a whole number of blocks long,
// and that is what the host is told. False when the ring can't be allocated.
bool PrepareInputBuffer(InputState& input, int32_t blockKadrs);

// Copies whole unread kadrs. count: in: capacity in samples, out: samples copied; remaining: samples still unread.
int32_t GetData(InputState& input, int16_t* data, int32_t& count, int32_t& remaining);

// Unread samples.
int32_t CountUnreadData(const InputState& input);

}  // namespace corvane
