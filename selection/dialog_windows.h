// The windows of this folder's dialogs.
#pragma once

namespace corvane {

class dlgIP;
class dlgQuorn;

// Shows the dialog and returns when the user has closed it.
void ShowModal(dlgIP& dialog);
void ShowModal(dlgQuorn& dialog);

}  // namespace corvane
