// Which of the kadrs in a recording were not measured. The driver knows: it lists a gap before its kadrs can be read.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "driver/model/gap.h"

namespace corvane::recorder {

// The parts of these gaps from one kadr to another, which is no longer in it.
std::vector<Gap> GapsWithin(std::span<const Gap> gaps, int64_t from, int64_t to);

class RecordedGaps {
public:
    // So many gaps are kept one by one; each further one lengthens its module's last gap, with reason Various.
    static constexpr size_t KeptMax = 10000;

    explicit RecordedGaps(int64_t firstKadr = 0) : Kadrs_(firstKadr) {}

    // `kadrs` have been taken, the next ones after those before; `listed` are all gaps that the driver names by now.
    // Returns what is missing in each of these kadrs, which stays valid until the next call.
    std::span<const uint8_t> Add(int64_t kadrs, std::span<const Gap> listed);

    // Of the kadrs taken; a module's gaps are in order and don't touch unless their reasons differ.
    const std::vector<Gap>& Gaps() const { return Gaps_; }
    // Why the last kadr that was taken is missing for a module; none: it was measured.
    std::optional<GapReason> NewestReason(int32_t module) const;

private:
    void Keep(const Gap& gap);

    int64_t Kadrs_;  // taken, and those before the first
    std::vector<uint8_t> Missing_;
    std::vector<Gap> Gaps_;
    std::vector<Gap> Newest_;  // those that reach the last kadr taken
};

}  // namespace corvane::recorder
