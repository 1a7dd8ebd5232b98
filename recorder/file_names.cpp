#include "recorder/file_names.h"

#include <fmt/format.h>
#include <algorithm>
#include <cctype>
#include <string_view>

#include "recorder/file_system.h"

namespace corvane::recorder {
namespace {

constexpr std::string_view Extension = ".npy";

// Where the file's name has it for the last time.
size_t FindExtension(const std::string& path) {
    std::string lower = path;
    std::ranges::transform(lower, lower.begin(), [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    const size_t place = lower.rfind(Extension);
    const size_t folder = path.find_last_of("/\\");
    return folder != std::string::npos && place < folder ? std::string::npos : place;
}

}  // namespace

bool IsNpy(const std::string& path) {
    const size_t place = FindExtension(path);
    return place != std::string::npos && place + Extension.size() == path.size();
}

std::string DescriptionPath(const std::string& npyPath) {
    const std::string path = FollowLinks(npyPath);
    const size_t place = FindExtension(path);
    return place == std::string::npos ? path + ".json" : path.substr(0, place) + ".json" + path.substr(place + 4);
}

std::string PartName(const std::string& path, int part) {
    const size_t name = path.find_last_of("/\\") + 1;  // 0 without a folder
    const size_t dot = path.find_last_of('.');
    const size_t place = dot == std::string::npos || dot <= name ? path.size() : dot;
    return fmt::format("{}-{:03}{}", path.substr(0, place), part, path.substr(place));
}

}  // namespace corvane::recorder
