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
    // So many gaps are listed separately; each further one lengthens its module's last gap.
    static constexpr size_t Capacity = 4096;

    // Allocates all memory that the list will ever need. Throws std::bad_alloc.
    void Reserve();
    void Clear();

    // Adds a gap that begins at or after the end of its module's last one, and joins the two where they touch and have
    // the same reason. Allocates nothing.
    void Add(const Gap& gap);

    // In the order in which they were added; the gaps of two modules are mixed.
    std::vector<Gap> Gaps() const;

private:
    mutable platform::Mutex Lock_;
    std::vector<Gap> Gaps_;
};

}  // namespace corvane
