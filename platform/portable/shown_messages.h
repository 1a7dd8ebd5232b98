// What tests see of the messages to the user, who is not there.
#pragma once

#include <string>
#include <vector>

namespace corvane::platform {

extern std::vector<std::string> ShownMessages;  // "title|text"

}  // namespace corvane::platform
