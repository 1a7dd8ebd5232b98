#include "engine/driver_settings.h"

namespace corvane {

// Nothing is stored yet: the built-in defaults stay.
void LoadSettings(DriverState&) {}

void SaveSettings(const DriverState&) {}

}  // namespace corvane
