// Texts that come from the vendor libraries: fixed-size fields and error messages. Results are UTF-8.
#pragma once

#include <cstdint>
#include <span>
#include <string>

namespace corvane {

// Text of a fixed-size ANSI field: control bytes before the text are skipped, and the first one after that ends it.
std::string BytesToText(std::span<const char> bytes);

// "Error '" + code + "':" + line break + the library's text (null: the whole result is empty). At most 256 bytes of the
// text are read, even without a terminator.
std::string VendorErrorText(int32_t code, const char* text);

}  // namespace corvane
