// The platform's UTF-16 to and from UTF-8, or another code page. Ill-formed text becomes the replacement character.
#pragma once

#include <windows.h>

#include <string>
#include <string_view>

namespace corvane::platform {

inline std::wstring Wide(std::string_view text, UINT codePage = CP_UTF8) {
    std::wstring wide(text.size(), L'\0');  // never more UTF-16 units than bytes
    wide.resize(static_cast<size_t>(MultiByteToWideChar(codePage, 0, text.data(), static_cast<int>(text.size()),
                                                        wide.data(), static_cast<int>(wide.size()))));
    return wide;
}

inline std::string Narrow(std::wstring_view wide, UINT codePage) {
    std::string text(wide.size() * 4, '\0');  // bytes of a UTF-16 unit, at most
    text.resize(static_cast<size_t>(WideCharToMultiByte(codePage, 0, wide.data(), static_cast<int>(wide.size()),
                                                        text.data(), static_cast<int>(text.size()), nullptr, nullptr)));
    return text;
}

inline std::string Utf8(std::wstring_view wide) {
    return Narrow(wide, CP_UTF8);
}

}  // namespace corvane::platform
