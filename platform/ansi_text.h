// Text of the system's ANSI code page, which the vendor libraries use, to and from UTF-8. Bytes and characters that
// have no counterpart become the platform's replacement character; nothing fails.
#pragma once

#include <string>
#include <string_view>

namespace corvane::platform {

std::string FromAnsi(std::string_view ansi);
std::string ToAnsi(std::string_view utf8);

// The decimal separator of the user's locale.
std::string DecimalSeparator();

}  // namespace corvane::platform
