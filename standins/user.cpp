#include "standins/user.h"

#include "platform/user_interface.h"
#include "selection/dlgIP.h"
#include "selection/dlgQuorn.h"
#include "settings/dlgSetup.h"

namespace corvane {

std::vector<std::string> ShownMessages;
std::function<void(dlgIP&)> UserOfIP;
std::function<void(dlgQuorn&)> UserOfDevice;
std::function<void(dlgSetup&)> UserOfSetup;

void platform::ShowMessage(const std::string& title, const std::string& text) {
    ShownMessages.push_back(title + "|" + text);
}

void ShowModal(dlgIP& dialog) {
    if (UserOfIP) UserOfIP(dialog);
}

void ShowModal(dlgQuorn& dialog) {
    if (UserOfDevice) UserOfDevice(dialog);
}

void ShowModal(dlgSetup& dialog) {
    if (UserOfSetup) UserOfSetup(dialog);
}

}  // namespace corvane
