#include "driver/com/text.h"

#include <new>

namespace corvane {

std::wstring ToUtf16(std::string_view utf8) {
    const int bytes = static_cast<int>(utf8.size());
    if (bytes == 0) return {};
    std::wstring text(static_cast<size_t>(MultiByteToWideChar(CP_UTF8, 0, utf8.data(), bytes, nullptr, 0)), L'\0');
    MultiByteToWideChar(CP_UTF8, 0, utf8.data(), bytes, text.data(), static_cast<int>(text.size()));
    return text;
}

BSTR ToBstr(std::string_view utf8) {
    const std::wstring text = ToUtf16(utf8);
    BSTR result = SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
    if (result == nullptr) throw std::bad_alloc();
    return result;
}

}  // namespace corvane
