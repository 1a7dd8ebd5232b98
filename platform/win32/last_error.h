// A failed call of the platform as an exception with the platform's own message, in the user's language.
#pragma once

#include <windows.h>

#include <stdexcept>
#include <string>

#include "platform/ansi_text.h"
#include "platform/message_text.h"

namespace corvane::platform {

[[noreturn]] inline void ThrowLastError(DWORD code = GetLastError()) {
    constexpr uint32_t capacity = 512;
    std::string text = FromAnsi(SystemMessage(static_cast<int32_t>(code), capacity));
    text.erase(text.find_last_not_of("\r\n") + 1);
    throw std::runtime_error(text.empty() ? "code " + std::to_string(code) : text);
}

}  // namespace corvane::platform
