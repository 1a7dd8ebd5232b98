// Which kadrs of a recording were not measured. The recording thread adds, the host's thread reads; whoever adds does
// so before the kadrs become visible, so that no filled-in kadr is ever taken for a measured one.
#pragma once

#include <cstddef>
#include <vector>

#include "driver/model/gap.h"
#include "platform/threads.h"

namespace corvane {

class GapList {
public:
    // Gaps of their own; of what comes beyond, each module's last one is lengthened.
    static constexpr size_t Capacity = 4096;

    // Takes all memory that the list will ever need. Throws std::bad_alloc.
    void Reserve();
    void Clear();

    // Takes a gap that begins at or after the end of its module's last one, and joins the two where they touch and have
    // one reason. Allocates nothing.
    void Add(const Gap& gap);

    // In the order in which they began, two modules' gaps mixed.
    std::vector<Gap> Gaps() const;

private:
    mutable platform::Mutex Lock_;
    std::vector<Gap> Gaps_;
};

}  // namespace corvane
