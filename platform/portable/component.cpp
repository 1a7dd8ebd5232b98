#include "platform/component.h"

#include <filesystem>
#include <system_error>

namespace corvane::platform {

std::string ComponentFolder() {
    std::error_code failure;
    return std::filesystem::read_symlink("/proc/self/exe", failure).parent_path().string();
}

std::string ComponentFile() {
    return HostProgram();
}

std::string HostProgram() {
    std::error_code failure;
    return std::filesystem::read_symlink("/proc/self/exe", failure).string();
}

}  // namespace corvane::platform
