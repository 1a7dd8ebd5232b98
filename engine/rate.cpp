#include "engine/rate.h"

#include <algorithm>

#include "base/rounding.h"

namespace corvane {

namespace {

constexpr double ModuleClock = 1000;  // Hz

float LimitRate(const InputState& input, float rate) {
    if (rate > input.RateMax) return input.RateMax;
    return rate >= input.RateMin ? rate : input.RateMin;
}

int32_t DivisorFor(float limitedRate) {
    return std::clamp(RoundToInt32(ModuleClock / limitedRate - 1), 0, 255);
}

float RateOf(int32_t divisor) {
    return static_cast<float>(ModuleClock / (divisor + 1));
}

}  // namespace

float ApplyRate(InputState& input, EngineState& engine, float& rate) {
    rate = LimitRate(input, rate);
    const int32_t divisor = DivisorFor(rate);
    if (!engine.Thread.Running()) {
        for (ModuleRecord& module : engine.Opened()) {
            module.Handle.FrequencyDivisor = static_cast<uint8_t>(divisor);
        }
    }
    input.Rate = RateOf(divisor);
    return input.Rate;
}

float EffectiveRate(const InputState& input, float rate) {
    return RateOf(DivisorFor(LimitRate(input, rate)));
}

int32_t BlockKadrsFor(float rate) {
    int32_t kadrs = 1;
    while (static_cast<float>(kadrs * 20) < rate) kadrs *= 2;  // compared as products: the quotient would be rounded
    return kadrs;
}

int32_t RecvTimeoutFor(float rate, int32_t blockKadrs) {
    return RoundToInt32(blockKadrs * (1000.0 / rate)) + 500;
}

uint32_t StopWaitFor(float rate, int32_t blockKadrs) {
    return blockKadrs > 0 ? static_cast<uint32_t>(RoundToInt32(blockKadrs * 2000.0 / rate)) : 0;
}

}  // namespace corvane
