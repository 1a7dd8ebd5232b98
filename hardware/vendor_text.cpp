#include "hardware/vendor_text.h"

#include <string_view>

#include "platform/ansi_text.h"

namespace corvane {

std::string BytesToText(std::span<const char> bytes) {
    std::string text;
    for (const char byte : bytes) {
        if (static_cast<unsigned char>(byte) >= 32) {
            text += byte;
        } else if (!text.empty()) {
            break;
        }
    }
    return platform::FromAnsi(text);
}

std::string VendorErrorText(int32_t code, const char* text) {
    constexpr size_t MaxBytes = 256;
    if (text == nullptr) return {};
    size_t length = 0;
    while (length < MaxBytes && text[length] != '\0') length++;
    return "Error '" + std::to_string(code) + "':\r\n" + platform::FromAnsi(std::string_view(text, length));
}

}  // namespace corvane
