#include "settings/dlgSetup_window.h"

#include "settings/portable/dlgSetup_user.h"

namespace corvane {

std::function<void(dlgSetup&)> UserOfSetup;

void ShowModal(dlgSetup& dialog) {
    if (UserOfSetup) UserOfSetup(dialog);
}

}  // namespace corvane
