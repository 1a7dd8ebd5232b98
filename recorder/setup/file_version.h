// What the version record of a library says.
#pragma once

#include <string>

namespace corvane::recorder {

struct FileVersion {
    std::string Version;     // UTF-8; empty: it says none
    bool Simulated = false;  // one of the simulated vendor libraries
};

FileVersion VersionOf(const std::wstring& file);

}  // namespace corvane::recorder
