#include "selection/win32/ucIP_window.h"

#include <commctrl.h>

#include <optional>

#include "platform/win32/wide_text.h"

namespace corvane {

namespace {

using platform::Inside;
using platform::TwipsRect;

constexpr int Boxes = 4, MaxDigits = 3;
// Identifiers, counted from the first one: the frame, the boxes by index, their names, the dots.
constexpr int FrameId = 0, BoxId = 1, NameId = BoxId + Boxes, DotId = NameId + Boxes;
constexpr TwipsRect DotPlaces[] = {{450, 30, 45, 195}, {870, 30, 45, 195}, {1320, 30, 45, 195}};
constexpr TwipsRect BoxPlaces[] = {{1365, 30, 375, 195}, {930, 30, 375, 195}, {495, 30, 375, 195}, {60, 30, 375, 195}};

std::optional<CaretKey> CaretKeyOf(WPARAM key) {
    switch (key) {
        case VK_LEFT:
            return CaretKey::Left;
        case VK_UP:
            return CaretKey::Up;
        case VK_RIGHT:
            return CaretKey::Right;
        case VK_DOWN:
            return CaretKey::Down;
        case VK_HOME:
            return CaretKey::Home;
        case VK_END:
            return CaretKey::End;
        default:
            return {};
    }
}

}  // namespace

void ucIPWindow::AddControls(std::vector<platform::ControlDesign>& controls, const TwipsRect& place,
                             const std::string& name) const {
    constexpr DWORD EditStyle = WS_VISIBLE | WS_TABSTOP | ES_CENTER | ES_AUTOHSCROLL;
    for (int i = ucIP::Leftmost; i >= 0; i--) {
        const std::string number = std::to_string(ucIP::Leftmost - i + 1);
        controls.push_back(
            {FirstId_ + NameId + i, WC_STATICW, 0, {0, 0, 0, 0}, std::string(name).append(" ").append(number)});
        controls.push_back({FirstId_ + BoxId + i, WC_EDITW, EditStyle, Inside(place, BoxPlaces[i]), {}});
        if (i == 0) continue;
        const int dot = ucIP::Leftmost - i;
        controls.push_back(
            {FirstId_ + DotId + dot, WC_STATICW, WS_VISIBLE | SS_CENTER, Inside(place, DotPlaces[dot]), "."});
    }
    // The frame is added last, so that it lies behind the boxes and doesn't paint over them. It is an edit, to have the
    // border that the user's system gives to edits.
    constexpr DWORD FrameStyle = WS_VISIBLE | WS_DISABLED | WS_CLIPSIBLINGS | ES_READONLY;
    controls.push_back({FirstId_ + FrameId, WC_EDITW, FrameStyle, place, {}, WS_EX_CLIENTEDGE});
}

void ucIPWindow::Attach(HWND dialog) {
    Dialog_ = dialog;
    for (int i = 0; i < Boxes; i++) {
        SendMessageW(Box(i), EM_LIMITTEXT, MaxDigits, 0);
        SetWindowLongPtrW(Box(i), GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
        EditProcedure_ = reinterpret_cast<WNDPROC>(
            SetWindowLongPtrW(Box(i), GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(BoxProcedure)));
    }
}

void ucIPWindow::Placed(HWND dialog) const {
    for (int i = 0; i < Boxes; i++) {
        SendMessageW(GetDlgItem(dialog, FirstId_ + BoxId + i), EM_SETMARGINS, EC_LEFTMARGIN | EC_RIGHTMARGIN, 0);
    }
}

HWND ucIPWindow::Box(int index) const {
    return GetDlgItem(Dialog_, FirstId_ + BoxId + index);
}

void ucIPWindow::Read(int index) {
    OctetBox& box = Control_.txtIP[static_cast<size_t>(index)];
    wchar_t text[16] = {};
    GetWindowTextW(Box(index), text, 16);  // longer than the limit only when another program sets it
    box.Text = platform::Utf8(text);
    DWORD start = 0, end = 0;
    SendMessageW(Box(index), EM_GETSEL, reinterpret_cast<WPARAM>(&start), reinterpret_cast<LPARAM>(&end));
    box.SelStart = start;
    box.SelLength = end - start;
}

void ucIPWindow::Select(int index) {
    const OctetBox& box = Control_.txtIP[static_cast<size_t>(index)];
    SendMessageW(Box(index), EM_SETSEL, box.SelStart,
                 static_cast<LPARAM>(box.SelStart) + static_cast<LPARAM>(box.SelLength));
}

void ucIPWindow::Show() {
    Showing_ = true;
    for (int i = 0; i < Boxes; i++) {
        const std::wstring text = platform::Wide(Control_.txtIP[static_cast<size_t>(i)].Text);
        wchar_t shown[16] = {};
        GetWindowTextW(Box(i), shown, 16);
        if (text == shown) continue;
        SetWindowTextW(Box(i), text.c_str());
        Select(i);
    }
    Showing_ = false;
}

void ucIPWindow::Focus(int box) {
    if (GetFocus() != Box(box)) SetFocus(Box(box));
    Select(box);
}

void ucIPWindow::Command(int id, int code) {
    const int box = id - FirstId_ - BoxId;
    if (code != EN_CHANGE || Showing_ || box < 0 || box >= Boxes || EditProcedure_ == nullptr) return;
    Read(box);
    const int next = Control_.TextChanged(box);
    Show();
    if (next != box) Focus(next);
}

void ucIPWindow::KeyDown(int box, WPARAM key) {
    const std::optional<CaretKey> caretKey = CaretKeyOf(key);
    if (!caretKey) return;
    for (int i = 0; i < Boxes; i++) Read(i);
    const int next = Control_.KeyDown(box, *caretKey);
    if (next != box) Focus(next);
}

void ucIPWindow::DoubleClick(int box) {
    Read(box);
    Control_.DoubleClick(box);
    Select(box);
}

bool ucIPWindow::BeforeBox(int box, UINT message, WPARAM wParam) {
    if (message == WM_KEYDOWN) KeyDown(box, wParam);
    if (message != WM_CHAR) return true;
    Read(box);
    return Control_.Accepts(box, static_cast<char32_t>(wParam));
}

LRESULT CALLBACK ucIPWindow::BoxProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    auto& self = *reinterpret_cast<ucIPWindow*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    const int box = GetDlgCtrlID(window) - self.FirstId_ - BoxId;
    try {
        if (!self.BeforeBox(box, message, wParam)) return 0;
        const LRESULT result = CallWindowProcW(self.EditProcedure_, window, message, wParam, lParam);
        // After the box's own handling, which moves the focus and the caret there.
        if (message == WM_LBUTTONDBLCLK) self.DoubleClick(box);
        return result;
    } catch (...) {
        return 0;  // out of memory: the key has no effect
    }
}

}  // namespace corvane
