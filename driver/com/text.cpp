#include "driver/com/text.h"

#include <new>

#include "platform/win32/wide_text.h"

namespace corvane {

BSTR ToBstr(std::string_view utf8) {
    const std::wstring text = platform::Wide(utf8);
    BSTR result = SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
    if (result == nullptr) throw std::bad_alloc();
    return result;
}

std::string FromBstr(BSTR text) {
    return platform::Utf8(std::wstring_view(text, SysStringLen(text)));
}

}  // namespace corvane
