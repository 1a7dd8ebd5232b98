// UTF-8 to and from the platform's UTF-16. Ill-formed text becomes the replacement character.
#pragma once

#include <windows.h>

#include <string>
#include <string_view>

namespace corvane::platform {

inline std::wstring Wide(std::string_view utf8) {
    std::wstring text(utf8.size(), L'\0');  // never more UTF-16 units than bytes
    text.resize(static_cast<size_t>(MultiByteToWideChar(CP_UTF8, 0, utf8.data(), static_cast<int>(utf8.size()),
                                                        text.data(), static_cast<int>(text.size()))));
    return text;
}

inline std::string Utf8(std::wstring_view wide) {
    std::string text(wide.size() * 3, '\0');
    text.resize(static_cast<size_t>(WideCharToMultiByte(CP_UTF8, 0, wide.data(), static_cast<int>(wide.size()),
                                                        text.data(), static_cast<int>(text.size()), nullptr, nullptr)));
    return text;
}

}  // namespace corvane::platform
