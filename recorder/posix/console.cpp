#include "recorder/console.h"

#include <unistd.h>
#include <csignal>
#include <cstdlib>

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

bool WriteText(std::FILE* stream, std::string_view text) {
    return std::fwrite(text.data(), 1, text.size(), stream) == text.size() && std::fflush(stream) == 0;
}

bool IsTerminal(std::FILE* stream) {
    return isatty(fileno(stream)) != 0;
}

// The first of these that is set decides.
bool UserReadsRussian() {
    for (const char* name : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        const char* locale = std::getenv(name);
        if (locale != nullptr && *locale != '\0') return std::string_view(locale).starts_with("ru");
    }
    return false;
}

void WatchInterrupt() {
    struct sigaction action {};
    action.sa_handler = OnSignal;
    action.sa_flags = static_cast<int>(SA_RESETHAND) | SA_RESTART;  // the second signal has the default effect
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);

    // A terminal that closes says so more than once. Who has asked not to hear of it is left in peace.
    struct sigaction before {};
    sigaction(SIGHUP, nullptr, &before);
    action.sa_flags = SA_RESTART;
    if (before.sa_handler != SIG_IGN) sigaction(SIGHUP, &action, nullptr);
    // A reader that goes makes writing fail, and doesn't end the program.
    action.sa_handler = SIG_IGN;
    sigaction(SIGPIPE, &action, nullptr);
}

bool InterruptRequested() {
    return Interrupted != 0;
}

}  // namespace corvane::recorder
