#include "platform/win32/window_layout.h"

#include <commctrl.h>

#include <cmath>

#include "platform/win32/dpi.h"
#include "platform/win32/last_error.h"
#include "platform/win32/wide_text.h"

namespace corvane::platform {

namespace {

// Mean width and height in pixels of the letters that the designs are made for, at 96 dots per inch.
constexpr int DesignLetterWidth = 6, DesignLetterHeight = 13;
constexpr int DropDownRows = 8;

bool LettersFit(HDC context, int dpi) {
    TEXTMETRICW letters = {};
    GetTextMetricsW(context, &letters);
    constexpr auto SignedDesignDpi = static_cast<int>(DesignDpi);
    return MeanLetterWidth(context) * SignedDesignDpi <= DesignLetterWidth * dpi &&
           letters.tmHeight * SignedDesignDpi <= DesignLetterHeight * dpi;
}

// The system's font for dialogs, 8 points high; where its letters are larger than the design's, as those of a
// substitute font may be, the largest size that fits. The caller deletes it.
HFONT DialogFont(HWND window, int dpi) {
    constexpr int Points = 8, PointsPerInch = 72;
    const HDC context = GetDC(window);
    HFONT font = nullptr;
    bool fits = false;
    for (int height = MulDiv(Points, dpi, PointsPerInch); height > 0 && !fits; height--) {
        if (font != nullptr) DeleteObject(font);
        font = CreateFontW(-height, 0, 0, 0, FW_NORMAL, 0, 0, 0, DEFAULT_CHARSET, 0, 0, 0, 0, L"MS Shell Dlg 2");
        const HGDIOBJ previous = SelectObject(context, font);
        fits = LettersFit(context, dpi);
        SelectObject(context, previous);
    }
    ReleaseDC(window, context);
    return font;
}

// A closed combo box ignores the height of its window: it is as high as its line of text and what it adds around it. So
// the line gets the wanted height first, to measure what is added, and then that much less.
void SetClosedHeight(HWND combo, int height) {
    constexpr auto Closed = static_cast<WPARAM>(-1);
    SendMessageW(combo, CB_SETITEMHEIGHT, Closed, height);
    RECT area = {};
    GetWindowRect(combo, &area);
    SendMessageW(combo, CB_SETITEMHEIGHT, Closed, 2 * height - (area.bottom - area.top));
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
    const HFONT font = DialogFont(window, static_cast<int>(dpi));
    PixelsPerTwip_ = double{1} * dpi / TwipsPerInch;
    HWND child = GetWindow(window, GW_CHILD);
    for (const ControlDesign& control : controls) {
        const TwipsRect& place = control.Place;
        const int left = Pixels(place.Left), top = Pixels(place.Top);
        // Edges are rounded, not sizes, so that what touches in the design touches on the screen.
        const int width = Pixels(place.Left + place.Width) - left;
        const int height = Pixels(place.Top + place.Height) - top;
        const bool isCombo = lstrcmpW(control.Class, WC_COMBOBOXW) == 0;
        SendMessageW(child, WM_SETFONT, reinterpret_cast<WPARAM>(font), FALSE);
        MoveWindow(child, left, top, width, isCombo ? height * (1 + DropDownRows) : height, TRUE);
        if (isCombo) SetClosedHeight(child, height);
        child = GetWindow(child, GW_HWNDNEXT);
    }
    if (Font_ != nullptr) DeleteObject(Font_);
    Font_ = font;
}

// As the platform rounds it for dialogs and list boxes.
int MeanLetterWidth(HDC context) {
    constexpr wchar_t Letters[] = L"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";
    constexpr int Count = 52;
    SIZE size = {};
    GetTextExtentPoint32W(context, Letters, Count, &size);
    return (size.cx / (Count / 2) + 1) / 2;
}

int WindowLayout::Pixels(int twips) const {
    return static_cast<int>(std::lround(twips * PixelsPerTwip_));
}

}  // namespace corvane::platform
