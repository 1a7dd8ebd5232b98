#include "platform/ansi_text.h"

#include "platform/win32/wide_text.h"

namespace corvane::platform {

std::string FromAnsi(std::string_view ansi) {
    return Utf8(Wide(ansi, CP_ACP));
}

std::string ToAnsi(std::string_view utf8) {
    return Narrow(Wide(utf8), CP_ACP);
}

std::string DecimalSeparator() {
    wchar_t text[5] = {};  // at most three characters and the terminator
    const int length = GetLocaleInfoW(LOCALE_USER_DEFAULT, LOCALE_SDECIMAL, text, 5);
    return length < 2 ? "." : Utf8(text);
}

}  // namespace corvane::platform
