#include "platform/event_log.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <ctime>

namespace corvane::platform {

namespace {

std::string LogPath() {
    const char* named = std::getenv("CORVANE_LOG");
    if (named != nullptr && *named != '\0') return named;
    const char* home = std::getenv("HOME");
    return std::string(home != nullptr ? home : "") + "/Corvane.log";
}

int OpenLog(const std::string& path, int flags) {
    return open(path.c_str(), O_WRONLY | O_APPEND | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK | flags,
                0666);  // a pipe would block otherwise
}

// A log with room for one more line, or -1.
int OpenWithRoom(const std::string& path) {
    const int log = OpenLog(path, 0);
    if (log < 0) return log;
    struct stat status = {};
    const bool ordinary = fstat(log, &status) == 0 && S_ISREG(status.st_mode) && status.st_nlink == 1;
    if (ordinary && status.st_size < LogBytesMax) return log;
    close(log);
    if (!ordinary || std::rename(path.c_str(), (path + ".old").c_str()) != 0) return -1;
    return OpenLog(path, O_CREAT | O_EXCL);
}

std::string Time() {
    timespec now = {};
    clock_gettime(CLOCK_REALTIME, &now);
    tm parts = {};
    gmtime_r(&now.tv_sec, &parts);
    std::array<char, 32> text{};
    const size_t length = std::strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%S", &parts);
    const int more =
        std::snprintf(text.data() + length, text.size() - length, ".%03dZ", static_cast<int>(now.tv_nsec / 1000000));
    return {text.data(), length + static_cast<size_t>(more)};
}

}  // namespace

bool LogKept() noexcept {
    try {
        return access(LogPath().c_str(), W_OK) == 0;
    } catch (...) {
        return false;
    }
}

void AppendToLog(std::string_view event) noexcept {
    try {
        const int log = OpenWithRoom(LogPath());
        if (log < 0) return;
        const std::string line =
            LogLine(Time(), static_cast<uint32_t>(getpid()), static_cast<uint32_t>(gettid()), event);
        const ssize_t written = write(log, line.data(), line.size());
        static_cast<void>(written);
        close(log);
    } catch (...) {
        // No memory for a line: the work goes on without it.
    }
}

}  // namespace corvane::platform
