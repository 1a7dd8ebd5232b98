#include "tests/recorder/test_console.h"

#include "recorder/console.h"

namespace corvane::recorder {

std::string Said;
std::string StandardOutputText;
std::function<bool()> Interrupt;
std::function<bool()> Reader;

bool WriteText(std::FILE* stream, std::string_view text) {
    (stream == stdout ? StandardOutputText : Said) += text;
    return stream != stdout || !Reader || Reader();
}
bool IsTerminal(std::FILE*) {
    return false;
}
void WatchInterrupt() {}
bool InterruptRequested() {
    return Interrupt && Interrupt();
}

}  // namespace corvane::recorder
