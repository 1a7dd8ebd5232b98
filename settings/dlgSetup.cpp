#include "settings/dlgSetup.h"

namespace corvane {

// There is no dialog yet.
bool ShowSetting(DriverState&) {
    return false;
}

}  // namespace corvane
