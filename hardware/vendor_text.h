// Texts that come from the vendor libraries: fixed-size fields and error messages. Results are UTF-8.
#pragma once

#include <cstdint>
#include <span>
#include <string>

namespace corvane {

// Text of a fixed-size ANSI field: control bytes before it are skipped, the first one after it began ends it.
std::string BytesToText(std::span<const char> bytes);

// "Error '" + code + "':" + line break + the library's text (null: the whole result is empty). At most 256 bytes of the
// text are read, whether or not a terminator comes.
std::string VendorErrorText(int32_t code, const char* text);

}  // namespace corvane
