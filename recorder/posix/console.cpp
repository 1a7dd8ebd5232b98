#include "recorder/console.h"

#include <unistd.h>
#include <csignal>

namespace corvane::recorder {
namespace {

volatile std::sig_atomic_t Interrupted = 0;

void OnSignal(int) {
    Interrupted = 1;
}

}  // namespace

std::vector<std::string> CommandLineArguments(int count, const char* const* values) {
    return count > 0 ? std::vector<std::string>(values + 1, values + count) : std::vector<std::string>();
}

void WriteText(std::FILE* stream, std::string_view text) {
    std::fwrite(text.data(), 1, text.size(), stream);
    std::fflush(stream);
}

bool IsTerminal(std::FILE* stream) {
    return isatty(fileno(stream)) != 0;
}

void WatchInterrupt() {
    struct sigaction action {};
    action.sa_handler = OnSignal;
    action.sa_flags = static_cast<int>(SA_RESETHAND) | SA_RESTART;  // the second signal has the default effect
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
}

bool InterruptRequested() {
    return Interrupted != 0;
}

std::FILE* OpenForWriting(const std::string& path) {
    std::FILE* file = std::fopen(path.c_str(), "wb");
    if (file != nullptr) std::setvbuf(file, nullptr, _IONBF, 0);
    return file;
}

}  // namespace corvane::recorder
