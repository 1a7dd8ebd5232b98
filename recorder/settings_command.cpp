#include "recorder/settings_command.h"

#include "recorder/failure.h"
#include "recorder/list_command.h"

namespace corvane::recorder {

void ShowSettings(HostDevice& device) {
    if (!HostDevice::HasDialogs()) {
        throw Failure(ExitCode::Usage,
                      "This build has no windows, so it can't show the setup dialog: use ltr27rec.exe on Windows.");
    }
    OpenDevice(device);
    device.ShowSetting();
}

}  // namespace corvane::recorder
