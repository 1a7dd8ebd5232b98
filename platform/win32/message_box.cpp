#include "platform/message_box.h"

#include "platform/win32/wide_text.h"

namespace corvane::platform {

void ShowMessage(const std::string& title, const std::string& text) {
    MessageBoxW(GetActiveWindow(), Wide(text).c_str(), Wide(title).c_str(), MB_OK | MB_SETFOREGROUND | MB_TASKMODAL);
}

}  // namespace corvane::platform
