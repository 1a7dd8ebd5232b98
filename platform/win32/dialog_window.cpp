#include "platform/win32/dialog_window.h"

#include <algorithm>

#include "platform/win32/component_module.h"
#include "platform/win32/dpi.h"
#include "platform/win32/last_error.h"
#include "platform/win32/visual_styles.h"
#include "platform/win32/wide_text.h"

namespace corvane::platform {

namespace {

constexpr UINT MonitorDpiChanged = 0x02E0;  // WM_DPICHANGED, which Windows XP does not know

// Nobody sees the windows of a service's process: a dialog there would wait for ever.
bool DesktopVisible() {
    USEROBJECTFLAGS flags = {};
    return !GetUserObjectInformationW(GetProcessWindowStation(), UOI_FLAGS, &flags, sizeof flags, nullptr) ||
           (flags.dwFlags & WSF_VISIBLE) != 0;
}

// Redraws what the dialog has covered, because the caller may go on with something slow. Handles no other messages:
// with them a host could call the driver in the middle of an opening.
void DrawUncovered() {
    constexpr int ManyWindows = 200;  // a window that is never done must not hold up the host
    MSG message;
    for (int i = 0; i < ManyWindows && PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE | PM_QS_PAINT); i++) {
        DispatchMessageW(&message);
    }
}

}  // namespace

// Disables the host's windows of this thread, the owner among them, for as long as it exists.
class HostWindows {
public:
    HostWindows() {
        EnumThreadWindows(GetCurrentThreadId(), Add, reinterpret_cast<LPARAM>(this));
        for (const HWND window : Disabled_) EnableWindow(window, FALSE);
    }
    ~HostWindows() { Enable(); }
    HostWindows(const HostWindows&) = delete;
    HostWindows& operator=(const HostWindows&) = delete;

    void Enable() {
        for (const HWND window : Disabled_) EnableWindow(window, TRUE);
        Disabled_.clear();
    }

private:
    static BOOL CALLBACK Add(HWND window, LPARAM self) {
        if (IsWindowVisible(window) && IsWindowEnabled(window)) {
            reinterpret_cast<HostWindows*>(self)->Disabled_.push_back(window);
        }
        return TRUE;
    }

    std::vector<HWND> Disabled_;
};

bool DialogWindow::ShowModal(HWND owner) {
    if (!DesktopVisible()) return false;
    const VisualStyles styles;
    const MonitorDpi dpi;
    const HCURSOR pointer = SetCursor(LoadCursorW(nullptr, IDC_ARROW));
    HostWindows host;
    Host_ = &host;
    // No controls, no place and no font: the layout adds them.
    struct {
        DLGTEMPLATE Head;
        WORD Menu, Class, Title;
    } empty = {{DS_MODALFRAME | WS_POPUP | WS_CAPTION | WS_SYSMENU, 0, 0, 0, 0, 0, 0}, 0, 0, 0};
    const INT_PTR result =
        DialogBoxIndirectParamW(ComponentModule(), &empty.Head, owner, Procedure, reinterpret_cast<LPARAM>(this));
    const DWORD error = GetLastError();
    host.Enable();
    SetCursor(pointer);
    DrawUncovered();
    if (Failure_) std::rethrow_exception(Failure_);
    if (result == -1) throw std::runtime_error(Caption_ + ": " + ErrorText(error));
    return true;
}

void DialogWindow::SetText(int id, const std::string& text) {
    SetDlgItemTextW(Window_, id, Wide(text).c_str());
}

// Enables the host's windows first: otherwise the platform would activate another program's window when the dialog
// closes.
void DialogWindow::Close() {
    Host_->Enable();
    EndDialog(Window_, 0);
}

INT_PTR CALLBACK DialogWindow::Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_INITDIALOG) {
        SetWindowLongPtrW(window, DWLP_USER, lParam);
        reinterpret_cast<DialogWindow*>(lParam)->Window_ = window;
    }
    auto* const self = reinterpret_cast<DialogWindow*>(GetWindowLongPtrW(window, DWLP_USER));
    if (self == nullptr || self->Failure_) return FALSE;
    try {
        if (message == WM_CTLCOLORSTATIC) {
            return reinterpret_cast<INT_PTR>(self->Background(GetDlgCtrlID(reinterpret_cast<HWND>(lParam))));
        }
        return self->Handle(message, wParam, lParam) ? TRUE : FALSE;
    } catch (...) {
        self->Failure_ = std::current_exception();
        self->Close();
        return FALSE;
    }
}

// True: the dialog manager has nothing more to do.
bool DialogWindow::Handle(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_INITDIALOG:
            Load();
            return false;  // we have set the focus
        case WM_ACTIVATE:
            if (LOWORD(wParam) != WA_INACTIVE) {
                // Brings the dialog in front of the host's windows, without keeping it above all others.
                SetWindowPos(Window_, HWND_TOPMOST, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE);
                SetWindowPos(Window_, HWND_NOTOPMOST, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE);
                SetForegroundWindow(Window_);
                // The title was drawn as that of an inactive window, and not every platform draws it again.
                if (GetForegroundWindow() == Window_) SendMessageW(Window_, WM_NCACTIVATE, TRUE, 0);
            }
            return false;
        case WM_COMMAND:
            Command(LOWORD(wParam), HIWORD(wParam));
            return true;
        case WM_NOTIFY:
            Notify(*reinterpret_cast<const NMHDR*>(lParam));
            return false;
        case WM_HELP:
            Help();
            return true;
        case MonitorDpiChanged: {
            ApplyDpi(HIWORD(wParam));
            const RECT& suggested = *reinterpret_cast<const RECT*>(lParam);
            SetWindowPos(Window_, nullptr, suggested.left, suggested.top, 0, 0,
                         SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
            return true;
        }
        default:
            return false;
    }
}

void DialogWindow::Load() {
    ScaleDialogOurselves(Window_);
    SetWindowTextW(Window_, Wide(Caption_).c_str());
    Layout_.Create(Window_, Controls);
    Center();  // first to find its monitor, whose resolution decides its size
    ApplyDpi(WindowDpi(Window_));
    Center();
    Loaded();
    // Sets the focus as the Tab key does, which also selects a box's text.
    const HWND first = GetNextDlgTabItem(Window_, nullptr, FALSE);
    SendMessageW(Window_, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(first), TRUE);
}

void DialogWindow::ApplyDpi(UINT dpi) {
    Layout_.Apply(Window_, Controls, dpi);
    RECT outer = {}, inner = {};
    GetWindowRect(Window_, &outer);
    GetClientRect(Window_, &inner);
    SetWindowPos(Window_, nullptr, 0, 0, outer.right - outer.left - inner.right + Pixels(Client_.Width),
                 outer.bottom - outer.top - inner.bottom + Pixels(Client_.Height),
                 SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
    Placed();
}

// Centres the dialog on the host's window when that is in front, otherwise on the monitor with the pointer; always
// within the screen.
void DialogWindow::Center() {
    const HWND front = GetForegroundWindow();
    DWORD process = 0;
    GetWindowThreadProcessId(front, &process);
    const bool hosts = front != Window_ && process == GetCurrentProcessId();
    POINT pointer = {};
    GetCursorPos(&pointer);
    MONITORINFO monitor = {};
    monitor.cbSize = sizeof monitor;
    GetMonitorInfoW(hosts ? MonitorFromWindow(front, MONITOR_DEFAULTTONEAREST)
                          : MonitorFromPoint(pointer, MONITOR_DEFAULTTONEAREST),
                    &monitor);
    const RECT& area = monitor.rcWork;
    RECT around = area, own = {};
    if (hosts && !IsIconic(front)) GetWindowRect(front, &around);
    GetWindowRect(Window_, &own);
    const LONG width = own.right - own.left, height = own.bottom - own.top;
    const LONG left = std::max(area.left, std::min(area.right - width, (around.left + around.right - width) / 2));
    const LONG top = std::max(area.top, std::min(area.bottom - height, (around.top + around.bottom - height) / 2));
    SetWindowPos(Window_, nullptr, left, top, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

}  // namespace corvane::platform
