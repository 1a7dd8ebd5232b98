// The controls of a dialog, described in a table in twips and kept in pixels of the window's monitor.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

namespace corvane::platform {

// Twentieths of a point: 1440 to the inch, 15 to a pixel at 96 dots per inch.
struct Twips {
    int Left, Top, Width, Height;
};

// A place given relative to a frame's.
constexpr Twips Inside(const Twips& frame, const Twips& place) {
    return {frame.Left + place.Left, frame.Top + place.Top, place.Width, place.Height};
}

struct ControlDesign {
    int Id;
    const wchar_t* Class;
    DWORD Style;  // besides WS_CHILD
    Twips Place;
    std::string Caption;
    DWORD ExtendedStyle = 0;
};

class WindowLayout {
public:
    WindowLayout() = default;
    ~WindowLayout();
    WindowLayout(const WindowLayout&) = delete;
    WindowLayout& operator=(const WindowLayout&) = delete;

    // Makes the controls, in this order, which is also that of the Tab key. Throws std::runtime_error when one can't be
    // made.
    void Create(HWND window, const std::vector<ControlDesign>& controls);

    // Places the controls and gives them the system's message font for the resolution. The design is made for 8 point
    // letters; where the system's are larger, the dialog grows with them.
    void Apply(HWND window, const std::vector<ControlDesign>& controls, UINT dpi);

    int Pixels(int twips) const;  // as of the last Apply

private:
    HFONT Font_ = nullptr;
    double PixelsPerTwip_ = 0;
};

}  // namespace corvane::platform
