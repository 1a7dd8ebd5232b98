// Names matched against patterns with wildcards.
#pragma once

#include <string_view>

namespace corvane {

// Case-sensitive, the whole name. ? is any one character, * any run of characters (also none), # one decimal digit,
// [a-cx] one character of the list, [!a-cx] one that is not in it. A list without its closing bracket matches nothing.
bool MatchesPattern(std::string_view name, std::string_view pattern);

}  // namespace corvane
