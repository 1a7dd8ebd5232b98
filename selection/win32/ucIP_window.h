// The window of the IP address control: four boxes in one frame, which are controls of the dialog itself, so that the
// dialog manager moves the focus through them.
#pragma once

#include <windows.h>

#include <functional>
#include <string>
#include <vector>

#include "platform/win32/window_layout.h"
#include "selection/ucIP.h"

namespace corvane {

class ucIPWindow {
public:
    // Uses the identifiers firstId to firstId + IdCount - 1.
    static constexpr int IdCount = 12;

    ucIPWindow(ucIP& control, int firstId) : Control_(control), FirstId_(firstId) {}
    ucIPWindow(const ucIPWindow&) = delete;
    ucIPWindow& operator=(const ucIPWindow&) = delete;

    // The controls in the order of the Tab key, at that place of the dialog. name: what screen readers call the
    // address.
    void AddControls(std::vector<platform::ControlDesign>& controls, const platform::TwipsRect& place,
                     const std::string& name) const;

    void Attach(HWND dialog);  // once the controls exist
    // Called when the controls have been placed and have their font. Removes the boxes' margins, for which three digits
    // leave no room.
    void Placed(HWND dialog) const;
    void Show();  // shows all boxes, after the dialog has changed the address
    void Focus(int box);
    bool Owns(int id) const { return id >= FirstId_ && id < FirstId_ + IdCount; }
    // For the dialog's WM_COMMAND with an identifier of this control.
    void Command(int id, int code);

private:
    static LRESULT CALLBACK BoxProcedure(HWND box, UINT message, WPARAM wParam, LPARAM lParam);
    // False: the box must not handle the message.
    bool BeforeBox(int box, UINT message, WPARAM wParam);
    void KeyDown(int box, WPARAM key);
    void DoubleClick(int box);
    HWND Box(int index) const;
    void Read(int index);
    void Select(int index);

    ucIP& Control_;
    int FirstId_;
    HWND Dialog_ = nullptr;
    WNDPROC EditProcedure_ = nullptr;
    bool Showing_ = false;  // the boxes are being changed by Show, not by the user
};

}  // namespace corvane
