#include "platform/ansi_text.h"

#include <windows.h>

namespace corvane::platform {

namespace {

std::string Convert(std::string_view text, UINT from, UINT to) {
    if (text.empty()) return {};
    const int length = static_cast<int>(text.size());
    std::wstring wide(text.size(), L'\0');  // never more UTF-16 units than bytes
    wide.resize(static_cast<size_t>(
        MultiByteToWideChar(from, 0, text.data(), length, wide.data(), static_cast<int>(wide.size()))));
    if (wide.empty()) return {};
    std::string result(wide.size() * 4, '\0');
    result.resize(
        static_cast<size_t>(WideCharToMultiByte(to, 0, wide.data(), static_cast<int>(wide.size()), result.data(),
                                                static_cast<int>(result.size()), nullptr, nullptr)));
    return result;
}

}  // namespace

std::string FromAnsi(std::string_view ansi) {
    return Convert(ansi, CP_ACP, CP_UTF8);
}

std::string ToAnsi(std::string_view utf8) {
    return Convert(utf8, CP_UTF8, CP_ACP);
}

std::string DecimalSeparator() {
    wchar_t text[5] = {};  // at most three characters and the terminator
    const int length = GetLocaleInfoW(LOCALE_USER_DEFAULT, LOCALE_SDECIMAL, text, 5);
    if (length < 2) return ".";
    char utf8[16] = {};
    WideCharToMultiByte(CP_UTF8, 0, text, -1, utf8, sizeof utf8 - 1, nullptr, nullptr);
    return utf8;
}

}  // namespace corvane::platform
