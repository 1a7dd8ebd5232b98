#include "platform/event_log.h"

namespace corvane::platform {

std::string LogLine(std::string_view time, uint32_t process, uint32_t thread, std::string_view event) {
    constexpr size_t LengthMax = 2000;  // bytes of an event; the rest is left out
    std::string line(time);
    line += ' ' + std::to_string(process) + '.' + std::to_string(thread) + ' ';
    bool space = false;
    for (const char character : event.substr(0, LengthMax)) {
        const bool blank = static_cast<unsigned char>(character) <= ' ';
        if (!(blank && space)) line += blank ? ' ' : character;
        space = blank;
    }
    return line + "\r\n";
}

}  // namespace corvane::platform
