// Messages of the platform: its own by code, and templates with inserts. All texts are ANSI.
#pragma once

#include <array>
#include <cstdint>
#include <string>

namespace corvane::platform {

using MessageArguments = std::array<const char*, 5>;

// The template with its inserts filled in by the platform's rules: "%1" to "%99" take arguments, also with a width and
// a precision as in "%1!-10.3s!", "%%" is a percent sign, "%n" a line end, "%t" a tab, "%r" a carriage return, "%0"
// ends the text, and % before anything else gives that character; every line end becomes CR LF. capacity: room for the
// result in characters, its terminator included. Empty when the platform rejects the template, when the result does not
// fit, and when it is empty. The template must ask for no more than the five arguments, and only for texts.
std::string FormatMessageTemplate(const std::string& pattern, const MessageArguments& arguments, uint32_t capacity);

// The platform's message for one of its result codes, in the user's language, with its final line end. Empty when there
// is none, or when it has no room in `capacity` characters.
std::string SystemMessage(int32_t code, uint32_t capacity);

}  // namespace corvane::platform
