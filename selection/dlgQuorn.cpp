#include "selection/dlgQuorn.h"

namespace corvane {

// There is no dialog yet: the first crate serves.
int SelectDevice(DriverState&) {
    return 0;
}

}  // namespace corvane
