#include "engine/store_block.h"

#include <emmintrin.h>

#include <algorithm>

namespace corvane {

namespace {

constexpr double Highest = 32767;

// Rounds two values to the nearest integers, at most 32767. The conversion turns every value outside its range into the
// lowest integer: right for what is too low, wrong for what is too high, hence the limit. Of two operands the minimum
// gives the second one when either is NaN, so NaN reaches the conversion and becomes the lowest integer, too.
__m128i RoundTwo(__m128d values) {
    return _mm_cvtpd_epi32(_mm_min_pd(_mm_set1_pd(Highest), values));
}

// Packs to 16 bits and subtracts mid-scale, both with saturation.
__m128i Centre(__m128i low, __m128i high) {
    return _mm_subs_epi16(_mm_packs_epi32(low, high), _mm_set1_epi16(MidScale));
}

// Eight adjacent channels of one kadr.
__m128i EightSamples(const double* values) {
    const auto four = [](const double* v) {
        return _mm_unpacklo_epi64(RoundTwo(_mm_loadu_pd(v)), RoundTwo(_mm_loadu_pd(v + 2)));
    };
    return Centre(four(values), four(values + 4));
}

// One channel's samples of four kadrs in a row, in the lower half of the result.
__m128i FourSamplesOfChannel(const double* value) {
    const auto two = [](const double* v) { return RoundTwo(_mm_loadh_pd(_mm_load_sd(v), v + ModuleChannels)); };
    const __m128i four = _mm_unpacklo_epi64(two(value), two(value + ptrdiff_t{2} * ModuleChannels));
    return Centre(four, four);
}

void StoreDense(const StorePlan& plan, int32_t kadrs, int16_t* ring) {
    for (size_t m = 0; m < plan.Dense.size(); m++) {
        const StorePlan::DenseModule& module = plan.Dense[m];
        const auto* fitted = reinterpret_cast<const __m128i*>(module.Fitted);
        const __m128i low = _mm_loadu_si128(fitted);
        const __m128i high = _mm_loadu_si128(fitted + 1);
        const double* values = module.Block;
        int16_t* kadr = ring + m * ModuleChannels;
        for (int32_t k = 0; k < kadrs; k++, values += ModuleChannels, kadr += plan.Channels) {
            auto* samples = reinterpret_cast<__m128i*>(kadr);
            _mm_storeu_si128(samples, _mm_and_si128(EightSamples(values), low));
            _mm_storeu_si128(samples + 1, _mm_and_si128(EightSamples(values + 8), high));
        }
    }
}

// Goes channel by channel. With one channel's pointers in registers this is faster than kadr by kadr, and the block,
// which is walked through again for the next channel, is still in the first-level cache.
void StoreSparse(const StorePlan& plan, int32_t kadrs, int16_t* ring) {
    const ptrdiff_t step = plan.Channels;
    for (const StorePlan::Source& source : plan.Sparse) {
        const double* value = source.First;
        int16_t* sample = ring + source.Position;
        int32_t k = 0;
        for (; k + 4 <= kadrs; k += 4, value += 4 * ModuleChannels, sample += 4 * step) {
            const __m128i four = FourSamplesOfChannel(value);
            sample[0] = static_cast<int16_t>(_mm_extract_epi16(four, 0));
            sample[step] = static_cast<int16_t>(_mm_extract_epi16(four, 1));
            sample[2 * step] = static_cast<int16_t>(_mm_extract_epi16(four, 2));
            sample[3 * step] = static_cast<int16_t>(_mm_extract_epi16(four, 3));
        }
        for (; k < kadrs; k++, value += ModuleChannels, sample += step) *sample = SampleOf(*value);
    }
}

// Sixteen channels in order may also be some of one module and the others of the next.
bool WholeModules(const std::vector<int16_t>& table) {
    if (table.size() % ModuleChannels != 0) return false;
    for (size_t position = 0; position < table.size(); position++) {
        const size_t channel = position % ModuleChannels;
        const int first = table[position - channel];
        if (first % ModuleChannels != 0 || table[position] != first + static_cast<int>(channel)) return false;
    }
    return true;
}

}  // namespace

// The exponent of what is no number has every bit set: one more in its lowest bit carries into the sign, which no
// number's does.
bool AllNumbers(const double* block, int32_t kadrs) {
    const __m128i exponent = _mm_set1_epi64x(0x7FF0'0000'0000'0000);
    const __m128i lowestBit = _mm_set1_epi64x(0x0010'0000'0000'0000);
    __m128i carries = _mm_setzero_si128();
    for (const double* end = block + ptrdiff_t{kadrs} * ModuleChannels; block < end; block += 2) {
        const __m128i bits = _mm_castpd_si128(_mm_loadu_pd(block));
        carries = _mm_or_si128(carries, _mm_add_epi64(_mm_and_si128(bits, exponent), lowestBit));
    }
    return _mm_movemask_pd(_mm_castsi128_pd(carries)) == 0;
}

StorePlan MakeStorePlan(const EngineState& engine, const std::vector<int16_t>& table) {
    StorePlan plan;
    plan.Channels = static_cast<int16_t>(table.size());
    const bool dense = WholeModules(table);
    for (size_t position = 0; position < table.size(); position++) {
        const auto index = static_cast<size_t>(table[position] / ModuleChannels);
        const int channel = table[position] % ModuleChannels;
        if (index >= engine.Opened().size()) continue;
        const ModuleRecord& module = engine.Modules[index];
        if (dense && channel == 0) plan.Dense.push_back({module.Block.data(), {}});
        if (!ChannelFitted(module, channel)) continue;
        if (dense) {
            plan.Dense.back().Fitted[channel] = -1;
        } else {
            plan.Sparse.push_back({static_cast<int16_t>(position), module.Block.data() + channel});
        }
    }
    return plan;
}

int16_t SampleOf(double code) {
    const int rounded = _mm_cvtsd_si32(_mm_min_sd(_mm_set_sd(Highest), _mm_set_sd(code)));
    return static_cast<int16_t>(std::max(rounded, MidScale - 32768) - MidScale);
}

void StoreBlock(const StorePlan& plan, int32_t kadrs, int16_t* ring) {
    if (plan.Dense.empty()) {
        StoreSparse(plan, kadrs, ring);
    } else {
        StoreDense(plan, kadrs, ring);
    }
}

}  // namespace corvane
