#include "common/mTypes3.h"

namespace corvane {

void InitSettingsLocation(DriverState& state, const std::string& name) {
    if (state.Device.DriverName.empty()) state.Device.DriverName = name;
    state.SettingsKeyPath = "Software\\Vrex\\ADC\\L-Card\\" + name;
}

}  // namespace corvane
