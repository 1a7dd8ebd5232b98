#include "platform/win32/window_layout.h"

#include <commctrl.h>

#include <algorithm>
#include <cmath>

#include "platform/win32/dpi.h"
#include "platform/win32/last_error.h"
#include "platform/win32/wide_text.h"

namespace corvane::platform {

namespace {

// Mean width and height in pixels of the letters that the designs are made for, at 96 dots per inch.
constexpr double DesignLetterWidth = 6, DesignLetterHeight = 13;
constexpr int DropDownRows = 8;

// How much larger than the design's the letters are in both directions, at least 1.
double LetterScale(HWND window, HFONT font, double dpiScale) {
    constexpr wchar_t letters[] = L"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";
    constexpr int count = 52;
    const HDC context = GetDC(window);
    const HGDIOBJ previous = SelectObject(context, font);
    SIZE size = {};
    GetTextExtentPoint32W(context, letters, count, &size);
    SelectObject(context, previous);
    ReleaseDC(window, context);
    // Whole pixels, as the design's letters are counted.
    const double width = std::round(static_cast<double>(size.cx) / count), height = static_cast<double>(size.cy);
    return std::max({1.0, width / (DesignLetterWidth * dpiScale), height / (DesignLetterHeight * dpiScale)});
}

}  // namespace

WindowLayout::~WindowLayout() {
    if (Font_ != nullptr) DeleteObject(Font_);
}

void WindowLayout::Create(HWND window, const std::vector<ControlDesign>& controls) {
    for (const ControlDesign& control : controls) {
        const HMENU id = reinterpret_cast<HMENU>(static_cast<INT_PTR>(control.Id));
        if (CreateWindowExW(control.ExtendedStyle, control.Class, Wide(control.Caption).c_str(),
                            control.Style | WS_CHILD, 0, 0, 0, 0, window, id, nullptr, nullptr) == nullptr) {
            ThrowLastError();
        }
    }
}

void WindowLayout::Apply(HWND window, const std::vector<ControlDesign>& controls, UINT dpi) {
    const HFONT font = MessageFont(dpi);
    const double dpiScale = double{1} * dpi / DesignDpi;
    constexpr double designTwipsPerPixel = 1440.0 / DesignDpi;
    PixelsPerTwip_ = dpiScale * LetterScale(window, font, dpiScale) / designTwipsPerPixel;
    HWND child = GetWindow(window, GW_CHILD);
    for (const ControlDesign& control : controls) {
        const Twips& place = control.Place;
        const int left = Pixels(place.Left), top = Pixels(place.Top);
        // Edges are rounded, not sizes, so that what touches in the design touches on the screen.
        const int width = Pixels(place.Left + place.Width) - left;
        int height = Pixels(place.Top + place.Height) - top;
        if (lstrcmpW(control.Class, WC_COMBOBOXW) == 0) height *= 1 + DropDownRows;  // of the opened box
        SendMessageW(child, WM_SETFONT, reinterpret_cast<WPARAM>(font), FALSE);
        MoveWindow(child, left, top, width, height, TRUE);
        child = GetWindow(child, GW_HWNDNEXT);
    }
    if (Font_ != nullptr) DeleteObject(Font_);
    Font_ = font;
}

int WindowLayout::Pixels(int twips) const {
    return static_cast<int>(std::lround(twips * PixelsPerTwip_));
}

}  // namespace corvane::platform
