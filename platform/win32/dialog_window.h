// A modal dialog whose controls come from a table. Keyboard use (Tab, Enter, Esc, accelerators) is the dialog
// manager's: Enter presses the button with BS_DEFPUSHBUTTON, Esc the one whose identifier is IDCANCEL, as the close
// button does.
#pragma once

#include <windows.h>

#include <exception>
#include <string>
#include <vector>

#include "platform/win32/window_layout.h"

namespace corvane::platform {

class DialogWindow {
public:
    DialogWindow(const DialogWindow&) = delete;
    DialogWindow& operator=(const DialogWindow&) = delete;

    // Returns when the user has closed the dialog. The windows of the host that belong to this thread accept no input
    // meanwhile; `owner` may be null. False when no user could see it: the process has no visible desktop. Throws what
    // a handler has thrown, and std::runtime_error with the platform's message when the dialog can't be made.
    bool ShowModal(HWND owner);

protected:
    // The client area's size in twips.
    DialogWindow(std::string caption, int width, int height)
        : Caption_(std::move(caption)), Client_{0, 0, width, height} {}
    virtual ~DialogWindow() = default;

    // Called when all controls have been made. Shows what they are to contain.
    virtual void Loaded() = 0;
    // Called after the controls have been placed for the monitor's resolution, at first and whenever that changes.
    virtual void Placed() {}
    // A button was pressed, or a control reports something by a notification code.
    virtual void Command(int id, int code) = 0;
    // A control reports something by WM_NOTIFY.
    virtual void Notify(const NMHDR&) {}
    // A brush for a static control's background; null: the dialog's own.
    virtual HBRUSH Background(int /*id*/) { return nullptr; }
    virtual void Help() {}

    HWND Window() const { return Window_; }
    HWND Control(int id) const { return GetDlgItem(Window_, id); }
    int Pixels(int twips) const { return Layout_.Pixels(twips); }
    void SetText(int id, const std::string& text);
    void Close();

    std::vector<ControlDesign> Controls;  // filled by the derived class's constructor

private:
    static INT_PTR CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    bool Handle(UINT message, WPARAM wParam, LPARAM lParam);
    void Load();
    void ApplyDpi(UINT dpi);
    void Center();

    std::string Caption_;
    TwipsRect Client_;
    HWND Window_ = nullptr;
    WindowLayout Layout_;
    std::exception_ptr Failure_;
    class HostWindows* Host_ = nullptr;
};

}  // namespace corvane::platform
