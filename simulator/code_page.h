#pragma once

#include <string>
#include <string_view>

namespace ltrsim {

// UTF-8 to code page 1251, as far as unit texts need it: ASCII, Russian letters, degree, plus-minus and micro sign.
// Anything else becomes '?'.
std::string ToCodePage1251(std::string_view utf8);

}  // namespace ltrsim
