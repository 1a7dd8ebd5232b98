#include "engine/driver_settings.h"

#include "platform/event_log.h"

namespace corvane {

namespace {

constexpr const char* RateName = "Rate";
constexpr const char* MarkModeName = "MarkSTARTMode";
constexpr int16_t LastMarkMode = 7;

// Any positive number, however small: ApplyRate changes it to a rate that the module has. NaN is not usable.
bool UsableRate(float rate, float rateMax) {
    return rate > 0 && rate <= rateMax;
}

void LogSettings(const char* what, const SettingsLocation& location, const InputState& input, const CrateInfo& crate) {
    platform::LogEvent([&] {
        return "settings " + std::string(what) + ' ' + location.SettingsKeyPath + ": rate " +
               std::to_string(input.Rate) + " Hz, START mark mode " + std::to_string(crate.MarkSTARTMode);
    });
}

}  // namespace

void LoadSettings(SettingsLocation& location, InputState& input, CrateInfo& crate) {
    if (!GoToSettings(location)) return;
    cRegistry& registry = location.SettingsRegistry;
    float rate = 0;
    if (registry.ReadFloat(RateName, rate, 0) && UsableRate(rate, input.RateMax)) input.Rate = rate;
    int16_t& mode = crate.MarkSTARTMode;
    if (registry.ReadInt16(MarkModeName, mode, 0) && (mode < 0 || mode > LastMarkMode)) mode = 0;
    LogSettings("read from", location, input, crate);
}

void SaveSettings(SettingsLocation& location, const InputState& input, const CrateInfo& crate) {
    if (!GoToSettings(location)) return;
    if (UsableRate(input.Rate, input.RateMax)) {
        location.SettingsRegistry.WriteFloat(RateName, input.Rate);
    }
    location.SettingsRegistry.WriteInt16(MarkModeName, crate.MarkSTARTMode);
    LogSettings("written to", location, input, crate);
}

}  // namespace corvane
