// Text at the COM border, where it is UTF-16.
#pragma once

#include <windows.h>

#include <oleauto.h>

#include <string>
#include <string_view>

namespace corvane {

// The caller owns the result. Throws std::bad_alloc.
BSTR ToBstr(std::string_view utf8);

// UTF-8 of a text that may be null, as an empty one often is. Throws std::bad_alloc.
std::string FromBstr(BSTR text);

}  // namespace corvane
