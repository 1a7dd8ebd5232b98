#include "platform/message_box.h"

#include "platform/portable/shown_messages.h"

namespace corvane::platform {

std::vector<std::string> ShownMessages;

void ShowMessage(const std::string& title, const std::string& text) {
    ShownMessages.push_back(title + "|" + text);
}

}  // namespace corvane::platform
