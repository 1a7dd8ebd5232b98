#include "platform/user_interface.h"

#include "platform/win32/wide_text.h"

namespace corvane::platform {

void ShowMessage(const std::string& title, const std::string& text) {
    MessageBoxW(GetActiveWindow(), Wide(text).c_str(), Wide(title).c_str(), MB_OK | MB_SETFOREGROUND | MB_TASKMODAL);
}

BusyPointer::BusyPointer() : Previous_(SetCursor(LoadCursorW(nullptr, IDC_WAIT))) {}

BusyPointer::~BusyPointer() {
    SetCursor(static_cast<HCURSOR>(Previous_));
}

}  // namespace corvane::platform
