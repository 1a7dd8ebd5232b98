// The component's own file: the folder that holds it and the texts it carries.
#pragma once

#include <string>

namespace corvane::platform {

// Folder that holds the component's file, without a separator at its end; UTF-8.
std::string ComponentFolder();

// Name of the first ordinary file (no folder, not hidden, none of the system's) in `folder` whose name begins with `prefix` and ends with `suffix`, in the order of
// the file system, compared as that file system compares; empty when there is none.
std::string FirstFile(const std::string& folder, const std::string& prefix, const std::string& suffix);

// The numbered text in the user's language; empty when there is none.
std::string StringResource(int number);

}  // namespace corvane::platform
