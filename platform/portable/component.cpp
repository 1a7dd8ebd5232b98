#include "platform/component.h"

#include <filesystem>
#include <system_error>

namespace corvane::platform {

std::string ComponentFolder() {
    std::error_code failure;
    return std::filesystem::read_symlink("/proc/self/exe", failure).parent_path().string();
}

std::string FirstFile(const std::string& folder, const std::string& prefix, const std::string& suffix) {
    std::error_code failure;
    for (const auto& entry : std::filesystem::directory_iterator(folder, failure)) {
        const std::string name = entry.path().filename().string();
        if (name.size() >= prefix.size() + suffix.size() && name.starts_with(prefix) && name.ends_with(suffix) &&
            entry.is_regular_file(failure)) {
            return name;
        }
    }
    return {};
}

// English: the portable build has no user interface language.
std::string StringResource(int number) {
    switch (number) {
#define CORVANE_TEXT(id, english, russian) \
    case id:                               \
        return english;
#include "resources/string_table.inc"
#undef CORVANE_TEXT
        default:
            return {};
    }
}

}  // namespace corvane::platform
