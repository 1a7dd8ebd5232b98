#include "platform/message_text.h"

#include <windows.h>

namespace corvane::platform {

namespace {

std::string Format(DWORD flags, const void* source, DWORD code, uint32_t capacity, const char* const* arguments) {
    std::string text(capacity, '\0');
    // With FORMAT_MESSAGE_ARGUMENT_ARRAY the last argument is an array of addresses, whatever its declared type.
    auto* array = reinterpret_cast<va_list*>(const_cast<char**>(arguments));
    text.resize(FormatMessageA(flags, source, code, 0, text.data(), capacity, array));
    return text;
}

}  // namespace

std::string FormatMessageTemplate(const std::string& pattern, const MessageArguments& arguments, uint32_t capacity) {
    return Format(FORMAT_MESSAGE_FROM_STRING | FORMAT_MESSAGE_ARGUMENT_ARRAY, pattern.c_str(), 0, capacity,
                  arguments.data());
}

std::string SystemMessage(int32_t code, uint32_t capacity) {
    return Format(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, static_cast<DWORD>(code),
                  capacity, nullptr);
}

}  // namespace corvane::platform
