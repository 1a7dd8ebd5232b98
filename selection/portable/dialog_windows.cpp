#include "selection/dialog_windows.h"

#include "selection/portable/dialog_users.h"

namespace corvane {

std::function<void(dlgIP&)> UserOfIP;
std::function<void(dlgQuorn&)> UserOfDevice;

void ShowModal(dlgIP& dialog) {
    if (UserOfIP) UserOfIP(dialog);
}

void ShowModal(dlgQuorn& dialog) {
    if (UserOfDevice) UserOfDevice(dialog);
}

}  // namespace corvane
