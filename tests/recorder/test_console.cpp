#include "tests/recorder/test_console.h"

#include "recorder/console.h"

namespace corvane::recorder {

std::string Said;
std::string StandardOutputText;
std::function<bool()> Interrupt;

bool WriteText(std::FILE* stream, std::string_view text) {
    Said += text;
    if (stream == stdout) StandardOutputText += text;
    return true;
}
bool IsTerminal(std::FILE*) {
    return false;
}
void WatchInterrupt() {}
bool InterruptRequested() {
    return Interrupt && Interrupt();
}

}  // namespace corvane::recorder
