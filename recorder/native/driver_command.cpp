#include "recorder/driver_command.h"

#include "recorder/failure.h"
#include "recorder/messages.h"

namespace corvane::recorder {

ExitCode ManageDriver(const Options&) {
    throw Failure(ExitCode::Usage, Say("Only Windows has a registered driver: here it is a part of this program."));
}

}  // namespace corvane::recorder
