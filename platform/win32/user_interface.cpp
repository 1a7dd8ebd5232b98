#include "platform/user_interface.h"

#include <windows.h>

namespace corvane::platform {

BusyPointer::BusyPointer() : Previous_(SetCursor(LoadCursorW(nullptr, IDC_WAIT))) {}

BusyPointer::~BusyPointer() {
    SetCursor(static_cast<HCURSOR>(Previous_));
}

}  // namespace corvane::platform
