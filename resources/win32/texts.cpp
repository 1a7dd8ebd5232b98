#include "resources/texts.h"

#include "platform/win32/component_module.h"
#include "platform/win32/wide_text.h"

namespace corvane {

std::string StringResource(int32_t number) {
    constexpr int Capacity = 1024;  // the longest text of the table is far below
    wchar_t text[Capacity] = {};
    const int length = LoadStringW(platform::ComponentModule(), static_cast<UINT>(number), text, Capacity);
    return length > 0 ? platform::Utf8(std::wstring_view(text, static_cast<size_t>(length))) : std::string();
}

}  // namespace corvane
