// Dots per inch of windows and monitors. Functions that Windows XP does not have are looked up at run time; where they
// are missing, all monitors have the one resolution of the system.
#pragma once

#include <windows.h>

namespace corvane::platform {

constexpr UINT DesignDpi = 96;

// While it exists, windows that the thread makes are given the resolution of their own monitor, even when the system
// stretches the windows of the host: texts stay sharp.
class MonitorDpi {
public:
    MonitorDpi();
    ~MonitorDpi();
    MonitorDpi(const MonitorDpi&) = delete;
    MonitorDpi& operator=(const MonitorDpi&) = delete;

private:
    void* Previous_ = nullptr;
};

UINT WindowDpi(HWND window);

// Keeps the dialog manager from scaling the dialog, which we do ourselves.
void ScaleDialogOurselves(HWND dialog);

}  // namespace corvane::platform
