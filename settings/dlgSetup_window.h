// The setup dialog's window.
#pragma once

namespace corvane {

class dlgSetup;

// Shows the dialog and returns when the user has closed it. Throws when that fails.
void ShowModal(dlgSetup& dialog);

}  // namespace corvane
