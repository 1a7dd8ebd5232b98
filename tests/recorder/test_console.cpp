#include "tests/recorder/test_console.h"

#include "recorder/console.h"

namespace corvane::recorder {

std::string Said;
bool Interrupted = false;

void WriteText(std::FILE*, std::string_view text) {
    Said += text;
}
bool IsTerminal(std::FILE*) {
    return false;
}
void WatchInterrupt() {}
bool InterruptRequested() {
    return Interrupted;
}
std::FILE* OpenForWriting(const std::string& path) {
    return std::fopen(path.c_str(), "wb");
}

}  // namespace corvane::recorder
