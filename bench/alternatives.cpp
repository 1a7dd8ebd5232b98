#include "bench/alternatives.h"

#include <emmintrin.h>

#include <algorithm>

#include "base/rounding.h"
#include "bench/comparison.h"

namespace corvane::bench {

namespace {

constexpr int32_t MaxBlockKadrs = 64;

}  // namespace

// Four sums, so that no addition waits for the one before.
void ReadAll(const double* values, size_t count) {
    __m128d first = _mm_setzero_pd();
    __m128d second = first;
    __m128d third = first;
    __m128d fourth = first;
    for (size_t i = 0; i < count; i += 8) {
        first = _mm_add_pd(first, _mm_loadu_pd(values + i));
        second = _mm_add_pd(second, _mm_loadu_pd(values + i + 2));
        third = _mm_add_pd(third, _mm_loadu_pd(values + i + 4));
        fourth = _mm_add_pd(fourth, _mm_loadu_pd(values + i + 6));
    }
    double sum = _mm_cvtsd_f64(_mm_add_pd(_mm_add_pd(first, second), _mm_add_pd(third, fourth)));
    Keep(&sum);
}

void ReadSelected(const StorePlan& plan, int32_t kadrs) {
    for (const StorePlan::Source& source : plan.Sparse) {
        double sum = 0;
        for (int32_t k = 0; k < kadrs; k++) sum += source.First[ptrdiff_t{k} * ModuleChannels];
        Keep(sum);
    }
}

void StepByStep(const EngineState& engine, const std::vector<int16_t>& table, int32_t kadrs, int16_t* ring) {
    double channelBuffer[MaxBlockKadrs];
    int16_t samples[MaxBlockKadrs];
    for (size_t position = 0; position < table.size(); position++) {
        const ModuleRecord& module = engine.Modules[static_cast<size_t>(table[position] / ModuleChannels)];
        const int channel = table[position] % ModuleChannels;
        if (!ChannelFitted(module, channel)) continue;
        const double* source = module.Block.data() + channel;
        for (int32_t k = 0; k < kadrs; k++) channelBuffer[k] = source[ptrdiff_t{k} * ModuleChannels];
        Keep(channelBuffer);
        for (int32_t k = 0; k < kadrs; k++) samples[k] = ClampToInt16(channelBuffer[k]);
        Keep(samples);
        for (int32_t k = 0; k < kadrs; k++) samples[k] = static_cast<int16_t>(samples[k] - MidScale);
        Keep(samples);
        for (int32_t k = 0; k < kadrs; k++) ring[static_cast<size_t>(k) * table.size() + position] = samples[k];
    }
    Keep(ring);
}

void FusedScalar(const EngineState& engine, int32_t channels, int32_t kadrs, int16_t* ring) {
    for (int32_t k = 0; k < kadrs; k++) {
        for (int32_t channel = 0; channel < channels; channel++) {
            const ModuleRecord& module = engine.Modules[static_cast<size_t>(channel / ModuleChannels)];
            const int32_t word = k * ModuleChannels + channel % ModuleChannels;
            const double code = module.Block[static_cast<size_t>(word)];
            const double limited = std::min(std::max(code, -32768.0), 32767.0);
            *ring++ = static_cast<int16_t>(_mm_cvtsd_si32(_mm_set_sd(limited)) - MidScale);
        }
    }
    Keep(ring);
}

}  // namespace corvane::bench
