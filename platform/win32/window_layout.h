// The controls of a dialog, described in a table in twips and placed in pixels of the window's monitor.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

namespace corvane::platform {

constexpr int TwipsPerInch = 1440;

// A rectangle in twips, which are twentieths of a point: 15 to a pixel at 96 dots per inch.
struct TwipsRect {
    int Left, Top, Width, Height;
};

// The place in the dialog of what is placed relative to a frame.
constexpr TwipsRect Inside(const TwipsRect& frame, const TwipsRect& place) {
    return {frame.Left + place.Left, frame.Top + place.Top, place.Width, place.Height};
}

struct ControlDesign {
    int Id;
    const wchar_t* Class;
    DWORD Style;  // besides WS_CHILD
    TwipsRect Place;
    std::string Caption;
    DWORD ExtendedStyle = 0;
};

// Mean width in pixels of the 52 letters in the font that is selected there. A quarter of it is the dialog unit in
// which list boxes measure their tab stops.
int MeanLetterWidth(HDC context);

class WindowLayout {
public:
    WindowLayout() = default;
    ~WindowLayout();
    WindowLayout(const WindowLayout&) = delete;
    WindowLayout& operator=(const WindowLayout&) = delete;

    // Makes the controls, in this order, which is also that of the Tab key. Throws std::runtime_error when one can't be
    // made.
    void Create(HWND window, const std::vector<ControlDesign>& controls);

    // Places the controls exactly as designed at that resolution and gives them the system's font for dialogs. Where
    // its letters are larger than the design's, a smaller size is chosen; the layout stays.
    void Apply(HWND window, const std::vector<ControlDesign>& controls, UINT dpi);

    int Pixels(int twips) const;  // as of the last Apply

private:
    HFONT Font_ = nullptr;
    double PixelsPerTwip_ = 0;
};

}  // namespace corvane::platform
