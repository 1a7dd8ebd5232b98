#include "tests/recorder/test_console.h"

#include "recorder/console.h"

namespace corvane::recorder {

std::string Said;
std::string StandardOutputText;
bool ReadsRussian = false;
std::function<bool()> Interrupt;
std::function<bool()> Reader;
std::vector<std::string>* Drawn = nullptr;

bool WriteText(std::FILE* stream, std::string_view text) {
    (stream == stdout ? StandardOutputText : Said) += text;
    return stream != stdout || !Reader || Reader();
}
void SetVariable(const std::string&, const std::u8string&) {}
bool IsTerminal(std::FILE* stream) {
    return stream == stdout && Drawn != nullptr;
}
ScreenSize TerminalSize(std::FILE*) {
    return {40, 6};
}
bool UserReadsRussian() {
    return ReadsRussian;
}
void WatchInterrupt() {}
bool InterruptRequested() {
    return Interrupt && Interrupt();
}

Screen::Screen() {
    Drawn->emplace_back("opened");
}
Screen::~Screen() {
    Drawn->emplace_back("closed");
}
bool Screen::Draw(const std::vector<std::string>& lines, ScreenSize) {
    std::string text;
    for (const std::string& line : lines) text += line + '\n';
    Drawn->push_back(text);
    return true;
}

}  // namespace corvane::recorder
