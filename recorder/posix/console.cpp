#include "recorder/console.h"

#include <sys/ioctl.h>
#include <unistd.h>
#include <csignal>
#include <cstdlib>
#include <cstring>

namespace corvane::recorder {
namespace {

volatile std::sig_atomic_t Interrupted = 0;  // by this signal
volatile std::sig_atomic_t ScreenOpen = 0;

// Another screen that keeps nothing, without cursor and without wrapping; and back.
constexpr std::string_view OpenScreen = "\x1b[?1049h\x1b[?25l\x1b[?7l";
constexpr std::string_view CloseScreen = "\x1b[?7h\x1b[?25h\x1b[?1049l";

// The second time ends the program.
void OnSignal(int signal) {
    if (Interrupted != signal) {
        Interrupted = signal;
        return;
    }
    if (ScreenOpen != 0 && write(STDOUT_FILENO, CloseScreen.data(), CloseScreen.size()) < 0) {
        // Nobody is there who would see it.
    }
    std::signal(signal, SIG_DFL);
    std::raise(signal);
}

void OnHangUp(int) {
    if (Interrupted == 0) Interrupted = SIGHUP;
}

}  // namespace

std::vector<std::string> CommandLineArguments(int count, const char* const* values) {
    return count > 0 ? std::vector<std::string>(values + 1, values + count) : std::vector<std::string>();
}

void SetVariable(const std::string& name, const std::u8string& value) {
    setenv(name.c_str(), reinterpret_cast<const char*>(value.c_str()), 1);
}

bool WriteText(std::FILE* stream, std::string_view text) {
    return std::fwrite(text.data(), 1, text.size(), stream) == text.size() && std::fflush(stream) == 0;
}

bool IsTerminal(std::FILE* stream) {
    return isatty(fileno(stream)) != 0;
}

ScreenSize TerminalSize(std::FILE* stream) {
    winsize size{};
    if (ioctl(fileno(stream), TIOCGWINSZ, &size) != 0 || size.ws_col == 0 || size.ws_row == 0) return {};
    return {size.ws_col, size.ws_row};
}

// The first of these that is set decides.
bool UserReadsRussian() {
    for (const char* name : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        const char* locale = std::getenv(name);
        if (locale == nullptr || *locale == '\0') continue;
        const std::string_view language(locale, std::strcspn(locale, "_.@"));
        return language == "ru" || language == "russian";
    }
    return false;
}

void WatchInterrupt() {
    struct sigaction action {};
    action.sa_handler = OnSignal;
    action.sa_flags = SA_RESTART;
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);

    // A terminal that closes says so more than once. Who has asked not to hear of it is left in peace.
    struct sigaction before {};
    sigaction(SIGHUP, nullptr, &before);
    action.sa_handler = OnHangUp;
    if (before.sa_handler != SIG_IGN) sigaction(SIGHUP, &action, nullptr);
    // A reader that goes makes writing fail, and doesn't end the program.
    action.sa_handler = SIG_IGN;
    sigaction(SIGPIPE, &action, nullptr);
}

bool InterruptRequested() {
    return Interrupted != 0;
}

Screen::Screen() {
    ScreenOpen = 1;
    WriteText(stdout, OpenScreen);
}

Screen::~Screen() {
    WriteText(stdout, CloseScreen);
    ScreenOpen = 0;
}

// Each line is put where it belongs, whatever the terminal did when its size changed.
bool Screen::Draw(const std::vector<std::string>& lines, ScreenSize) {
    std::string text;
    for (size_t i = 0; i < lines.size(); i++) text += "\x1b[" + std::to_string(i + 1) + ";1H" + lines[i] + "\x1b[K";
    return WriteText(stdout, text + "\x1b[J");
}

}  // namespace corvane::recorder
