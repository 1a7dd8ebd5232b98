// Dots per inch of windows and monitors. Everything newer than the oldest platform is looked up at run time; where it
// is missing, all monitors have the system's one resolution.
#pragma once

#include <windows.h>

namespace corvane::platform {

constexpr UINT DesignDpi = 96;

// While it lives, windows that the thread makes see the resolution of their own monitor, even where the host leaves
// stretching its windows to the system: texts stay sharp.
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

// The dialog manager would otherwise scale a dialog by itself, on top of us.
void ScaleDialogOurselves(HWND dialog);

}  // namespace corvane::platform
