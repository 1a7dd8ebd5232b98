// Messages to the user.
#pragma once

#include <string>

namespace corvane::platform {

// Shows the text with an OK button and waits for it, in front of the thread's active window. UTF-8.
void ShowMessage(const std::string& title, const std::string& text);

}  // namespace corvane::platform
