#include "selection/dlgIP.h"

namespace corvane {

// There is no dialog yet: nobody chooses.
uint32_t SelectIP(DriverState&) {
    return 0;
}

}  // namespace corvane
