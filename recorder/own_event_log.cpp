#include "recorder/own_event_log.h"

#include <fmt/format.h>

#include <chrono>
#include <fstream>

#include "recorder/console.h"

namespace corvane::recorder {
namespace {

constexpr const char* Variable = "CORVANE_LOG";  // names the driver's log, which is written where it exists

}  // namespace

OwnEventLog::OwnEventLog() {
    std::error_code none;
    const auto now = std::chrono::steady_clock::now().time_since_epoch().count();
    File_ = std::filesystem::temp_directory_path(none) / fmt::format("ltr27rec-{}.log", now);
    const std::ofstream file(File_);
    SetVariable(Variable, File_.u8string());
}

OwnEventLog::~OwnEventLog() {
    std::error_code none;
    std::filesystem::remove(File_, none);
}

std::vector<std::string> OwnEventLog::OfSearch() const {
    std::vector<std::string> lines;
    std::ifstream file(File_);
    for (std::string line; std::getline(file, line);) {
        if (line.ends_with('\r')) line.pop_back();
        const size_t process = line.find(' ');
        const size_t words = process == std::string::npos ? process : line.find(' ', process + 1);
        if (words == std::string::npos) continue;
        const std::string said = line.substr(words + 1);
        if (said.starts_with("server ") || said.starts_with("slot ")) lines.push_back(said);
    }
    return lines;
}

}  // namespace corvane::recorder
