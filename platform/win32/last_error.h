// The platform's own text, in the user's language, for a call that failed; also as an exception.
#pragma once

#include <windows.h>

#include <stdexcept>
#include <string>

#include "platform/ansi_text.h"
#include "platform/message_text.h"

namespace corvane::platform {

inline std::string ErrorText(DWORD code) {
    constexpr uint32_t Capacity = 512;
    std::string text = FromAnsi(SystemMessage(static_cast<int32_t>(code), Capacity));
    text.erase(text.find_last_not_of("\r\n") + 1);
    return text.empty() ? "code " + std::to_string(code) : text;
}

[[noreturn]] inline void ThrowLastError() {
    throw std::runtime_error(ErrorText(GetLastError()));
}

}  // namespace corvane::platform
