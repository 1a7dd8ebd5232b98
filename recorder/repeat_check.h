// Finds data that the driver filled in. When a module sends nothing, the driver stores its previous block again, or the
// lowest sample when there was none yet; the host gets it like any other data. Noise keeps real blocks from being
// equal. A block in which all kadrs are the same is not judged: a constant input looks like that, too.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "recorder/channel.h"

namespace corvane::recorder {

class RepeatCheck {
public:
    // `channels` in ascending order, as they are recorded.
    RepeatCheck(std::span<const Channel> channels, double rate);

    // Whole kadrs, one after another, from the first of the recording on.
    void Add(std::span<const int16_t> samples);

    // Kadrs that were filled in for a module; of the module that has most of them.
    int64_t FilledInKadrs() const;

private:
    struct Module {
        size_t First;  // column
        size_t End;
        int64_t FilledIn = 0;  // kadrs
    };

    bool FilledIn(const Module& module) const;

    size_t Columns_;
    size_t BlockKadrs_ = 1;
    std::vector<Module> Modules_;
    std::vector<int16_t> Previous_;  // the last whole block; empty before there is one
    std::vector<int16_t> Block_;
};

}  // namespace corvane::recorder
