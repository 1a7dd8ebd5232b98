#include "driver/model/input_state.h"

#include <algorithm>
#include <bit>
#include <limits>

#include "base/rounding.h"

namespace corvane {

namespace {

int32_t Saturate(int64_t value) {
    return static_cast<int32_t>(std::min<int64_t>(value, std::numeric_limits<int32_t>::max()));
}

void TellSize(InputState& input, int64_t kadrs) {
    input.InputSizeKadrs = Saturate(kadrs);
    input.InputSizeData = Saturate(kadrs * input.InputCountChannels());
}

}  // namespace

int32_t SetInputSize(InputState& input, bool powerOfTwo, int32_t newSize) {
    if (newSize < MinRequestedSize) {
        newSize = input.RequestedSize >= MinRequestedSize ? input.RequestedSize : DefaultRequestedSize;
    }
    if (input.ChTable.empty()) {
        input.ChTable = {0};
        TellSize(input, input.InputSizeKadrs);
    } else if (powerOfTwo) {
        const auto divisor = static_cast<int32_t>(std::bit_floor(input.ChTable.size()));
        TellSize(input, RoundToInt32(double(newSize) / divisor));
    } else {
        TellSize(input, newSize);
    }
    return input.InputSizeKadrs;
}

bool PrepareInputBuffer(InputState& input, int32_t blockKadrs) {
    const int64_t wanted = SetInputSize(input, false, 0);
    TellSize(input, (wanted + blockKadrs - 1) / blockKadrs * blockKadrs);
    std::vector<int16_t> table = input.ChTable;
    input.Gaps.Reserve();
    if (!input.Ring.ResetInputBuffer(input.InputCountChannels(), input.InputSizeKadrs)) return false;
    input.Gaps.Clear();
    input.RecordedTable = std::move(table);
    return true;
}

int32_t GetData(InputState& input, int16_t* data, int32_t& count, int32_t& remaining) {
    const int32_t channels = input.Ring.Channels();
    const int32_t kadrs = channels > 0 ? input.Ring.Read(data, count / channels) : 0;
    count = kadrs * channels;
    remaining = CountUnreadData(input);
    return kadrs;
}

int32_t CountUnreadData(const InputState& input) {
    return input.Ring.CountUnreadKadrs() * input.Ring.Channels();
}

}  // namespace corvane
