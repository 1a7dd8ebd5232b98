#include "engine/driver_settings.h"

#include "common/mTypes3.h"

namespace corvane {

namespace {

constexpr const char* RateName = "Rate";
constexpr const char* MarkModeName = "MarkSTARTMode";
constexpr int16_t LastMarkMode = 7;

// Any number, however small: ApplyRate brings it to a reachable one. NaN is none.
bool UsableRate(float rate, float rateMax) {
    return rate > 0 && rate <= rateMax;
}

}  // namespace

void LoadSettings(DriverState& state) {
    if (!GoToSettings(state)) return;
    cRegistry& registry = state.SettingsRegistry;
    float rate = 0;
    if (registry.ReadFloat(RateName, rate, 0) && UsableRate(rate, state.Input.RateMax)) state.Input.Rate = rate;
    int16_t& mode = state.Crate.MarkSTARTMode;
    if (registry.ReadInt16(MarkModeName, mode, 0) && (mode < 0 || mode > LastMarkMode)) mode = 0;
}

void SaveSettings(DriverState& state) {
    if (!GoToSettings(state)) return;
    if (UsableRate(state.Input.Rate, state.Input.RateMax)) {
        state.SettingsRegistry.WriteFloat(RateName, state.Input.Rate);
    }
    state.SettingsRegistry.WriteInt16(MarkModeName, state.Crate.MarkSTARTMode);
}

}  // namespace corvane
