#include "simulator/signal.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

namespace ltrsim {

namespace {

constexpr int SequenceBits = 15;  // of each of the two channels that number the kadrs
constexpr int64_t SequenceMask = (1 << SequenceBits) - 1;

// Uniform in [-1, 1), the same for the same salt and kadr on every machine (the finaliser of SplitMix64).
double Random(uint64_t salt, int64_t kadr) {
    uint64_t bits = salt + static_cast<uint64_t>(kadr) * 0x9E3779B97F4A7C15u;
    bits = (bits ^ (bits >> 30)) * 0xBF58476D1CE4E5B9u;
    bits = (bits ^ (bits >> 27)) * 0x94D049BB133111EBu;
    bits ^= bits >> 31;
    return static_cast<double>(static_cast<int64_t>(bits >> 11)) * 0x1p-52 - 1;
}

double Shape(SignalKind kind, double cycles) {
    const double phase = cycles - std::floor(cycles);
    switch (kind) {
        case SignalKind::Sine:
            return std::sin(2 * std::numbers::pi * phase);
        case SignalKind::Ramp:
            return 2 * phase - 1;
        case SignalKind::Square:
            return phase < 0.5 ? 1 : -1;
        default:
            return 0;
    }
}

}  // namespace

ModuleSource::ModuleSource(const Module& module) {
    for (size_t c = 0; c < Channels_.size(); c++) {
        const std::optional<Mezzanine>& mezzanine = module.Mezzanines[c / MezzanineChannels];
        if (!mezzanine) continue;
        Channel& channel = Channels_[c];
        channel.Fitted = true;
        channel.Odd = c % MezzanineChannels != 0;
        channel.Shape = mezzanine->Signals[c % MezzanineChannels];
        channel.Bottom = mezzanine->Bottom;
        const double span = mezzanine->Top - mezzanine->Bottom;
        channel.CodesPerUnit = span != 0 ? CodeSpan / span : 0;
        channel.Factory = mezzanine->Factory[c % MezzanineChannels];
        channel.Salt = (static_cast<uint64_t>(channel.Shape.Seed) << 32) + module.Slot * Channels_.size() + c;
        channel.Salt *= 0xD1342543DE82EF95u;
        FittedMask_[c] = SequenceMask;
        SequenceOnly_ = SequenceOnly_ && channel.Shape.Kind == SignalKind::Sequence && channel.Factory.Offset == 0 &&
                        channel.Factory.Scale == 1;
    }
}

double ModuleSource::Code(size_t channel, int64_t kadr, double rate) const {
    const Channel& source = Channels_[channel];
    if (!source.Fitted) return std::numeric_limits<double>::quiet_NaN();
    const Signal& signal = source.Shape;
    if (signal.Kind == SignalKind::Sequence) {
        return static_cast<double>((source.Odd ? kadr >> SequenceBits : kadr) & SequenceMask);
    }
    double value = signal.Offset;
    if (signal.Amplitude != 0) {
        value += signal.Amplitude * Shape(signal.Kind, signal.Frequency * static_cast<double>(kadr) / rate);
    }
    if (signal.Noise != 0) value += signal.Noise * Random(source.Salt, kadr);
    return std::clamp((value - source.Bottom) * source.CodesPerUnit, 0.0, static_cast<double>(LargestCode));
}

void ModuleSource::FillSequence(int64_t kadr, int64_t kadrs, uint32_t* words) const {
    for (const int64_t end = kadr + kadrs; kadr < end; kadr++, words += corvane::ModuleChannels) {
        const uint32_t even = static_cast<uint32_t>(kadr & SequenceMask);
        const uint32_t odd = static_cast<uint32_t>((kadr >> SequenceBits) & SequenceMask);
        const uint32_t number = static_cast<uint32_t>(kadr & 0xFFF) << 4;
        for (uint32_t c = 0; c < corvane::ModuleChannels; c += 2) {
            words[c] = (even & FittedMask_[c]) << RawCodeShift | number | c;
            words[c + 1] = (odd & FittedMask_[c + 1]) << RawCodeShift | number | (c + 1);
        }
    }
}

void ModuleSource::FillKadrs(int64_t kadr, int64_t kadrs, double rate, uint32_t* words) const {
    if (SequenceOnly_) return FillSequence(kadr, kadrs, words);
    for (const int64_t end = kadr + kadrs; kadr < end; kadr++) {
        const uint32_t number = static_cast<uint32_t>(kadr & 0xFFF) << 4;
        for (uint32_t c = 0; c < corvane::ModuleChannels; c++) {
            const Channel& channel = Channels_[c];
            uint32_t raw = 0;
            if (channel.Fitted) {
                const double code = Code(c, kadr, rate) / channel.Factory.Scale - channel.Factory.Offset;
                raw = static_cast<uint32_t>(std::lrint(std::clamp(code, 0.0, 65535.0)));
            }
            *words++ = raw << RawCodeShift | number | c;
        }
    }
}

}  // namespace ltrsim
