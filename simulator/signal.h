// What the simulated channels show: calibrated codes (0 to 32767) and the raw words that carry them.
#pragma once

#include <array>
#include <cstdint>

#include "hardware/vendor_records.h"
#include "simulator/scenario.h"

namespace ltrsim {

constexpr int LargestCode = CodeSpan - 1;

// Word of a channel: raw code (16 bits), kadr number (12 bits), channel (4 bits). So the lower half of consecutive
// words counts up by one.
constexpr int RawCodeShift = 16;

// All 16 channels of one LTR27. Immutable; safe from any thread.
class ModuleSource {
public:
    explicit ModuleSource(const Module& module);

    // Code of a channel in kadr `kadr` at `rate` Hz, both counted from the module's start. NaN for a position without a
    // mezzanine.
    double Code(size_t channel, int64_t kadr, double rate) const;

    // Writes the words of `kadrs` whole kadrs from `kadr` on.
    void FillKadrs(int64_t kadr, int64_t kadrs, double rate, uint32_t* words) const;

private:
    struct Channel {
        bool Fitted = false;
        bool Odd = false;  // second channel of its mezzanine
        Signal Shape;
        double Bottom = 0;
        double CodesPerUnit = 0;
        Calibration Factory;
        uint64_t Salt = 0;  // makes the noise of every channel its own
    };

    void FillSequence(int64_t kadr, int64_t kadrs, uint32_t* words) const;

    std::array<Channel, corvane::ModuleChannels> Channels_;
    std::array<uint32_t, corvane::ModuleChannels> FittedMask_{};
    bool SequenceOnly_ = true;  // fitted channels are uncalibrated sequences, which are made faster
};

}  // namespace ltrsim
