#include "tests/recorder/test_console.h"

#include "recorder/console.h"

namespace corvane::recorder {

std::string Said;
std::string StandardOutputText;
std::function<bool()> Interrupt;

bool WriteText(std::FILE* stream, std::string_view text) {
    (stream == stdout ? StandardOutputText : Said) += text;
    return true;
}
bool IsTerminal(std::FILE*) {
    return false;
}
bool UserReadsRussian() {
    return false;
}
void WatchInterrupt() {}
bool InterruptRequested() {
    return Interrupt && Interrupt();
}

}  // namespace corvane::recorder
