#include "tests/windows/dialog_user.h"

#include <gtest/gtest.h>

#include <atomic>

#include "tests/windows/com_host.h"

namespace corvane::test {

namespace {

constexpr DWORD PatienceMs = 8000;

void Send(std::vector<INPUT> inputs) {
    EXPECT_EQ(inputs.size(), SendInput(static_cast<UINT>(inputs.size()), inputs.data(), sizeof(INPUT)));
}

// The display reports each move a little later, and an old report would take the pointer back: it has to stay.
void MovePointer(const POINT& to) {
    for (int quiet = 0, tries = 0; quiet < 5 && tries < 200; quiet++, tries++) {
        POINT now = {};
        if (quiet == 0 || !GetCursorPos(&now) || now.x != to.x || now.y != to.y) {
            SetCursorPos(to.x, to.y);
            quiet = 0;
        }
        Sleep(10);
    }
}

INPUT Key(WORD key, bool up) {
    INPUT input = {};
    input.type = INPUT_KEYBOARD;
    input.ki.wVk = key;
    input.ki.dwFlags = up ? KEYEVENTF_KEYUP : 0;
    return input;
}

// No control does anything with this key. The thread under test counts how often it comes.
constexpr WORD MarkerKey = VK_F24;
std::atomic<int> MarkersSent, MarkersSeen;

LRESULT CALLBACK CountMarkers(int code, WPARAM key, LPARAM flags) {
    constexpr LPARAM Released = LPARAM{1} << 31;
    if (code == HC_ACTION && key == MarkerKey && (flags & Released) != 0) MarkersSeen++;
    return CallNextHookEx(nullptr, code, key, flags);
}

}  // namespace

std::wstring TextOf(HWND window) {
    wchar_t text[512] = {};
    SendMessageW(window, WM_GETTEXT, 512, reinterpret_cast<LPARAM>(text));
    return text;
}

std::vector<std::wstring> ListLines(HWND list) {
    std::vector<std::wstring> lines;
    for (LRESULT i = 0, count = SendMessageW(list, LB_GETCOUNT, 0, 0); i < count; i++) {
        wchar_t text[512] = {};
        SendMessageW(list, LB_GETTEXT, static_cast<WPARAM>(i), reinterpret_cast<LPARAM>(text));
        lines.push_back(text);
    }
    return lines;
}

DialogUser::DialogUser(std::wstring title, std::function<void(DialogUser&)> script)
    : Hook_(SetWindowsHookExW(WH_KEYBOARD, CountMarkers, nullptr, GetCurrentThreadId())),
      Thread_([this, title = std::move(title), script = std::move(script)] {
          ASSERT_TRUE(WaitFront(title)) << "no window '" << std::string(title.begin(), title.end()) << "'";
          Dialog_ = GetForegroundWindow();
          script(*this);
          for (int i = 0; i < 3 && IsWindow(Dialog_); i++) {  // a message box may lie on it
              Settle();
              if (IsWindow(Dialog_)) PostMessageW(GetLastActivePopup(Dialog_), WM_CLOSE, 0, 0);
          }
      }) {}

DialogUser::~DialogUser() {
    Thread_.join();
    UnhookWindowsHookEx(Hook_);
}

bool DialogUser::WaitFront(const std::wstring& title) {
    return WaitFor(
        [&] {
            const HWND front = GetForegroundWindow();
            DWORD process = 0;
            GetWindowThreadProcessId(front, &process);
            wchar_t text[512] = {};
            InternalGetWindowText(front, text, 512);  // without asking its thread, which may be about to wait for us
            // A dialog is active before it is shown, and takes keys then.
            return process == GetCurrentProcessId() && text == title && IsWindowVisible(front) && Focus() != nullptr;
        },
        PatienceMs);
}

HWND DialogUser::Child(const wchar_t* windowClass, int n) const {
    HWND child = nullptr;
    do {
        child = FindWindowExW(Dialog_, child, windowClass, nullptr);
    } while (child != nullptr && n-- > 0);
    EXPECT_NE(nullptr, child);
    return child;
}

HWND DialogUser::Focus() const {
    GUITHREADINFO info = {};
    info.cbSize = sizeof info;
    return GetGUIThreadInfo(0, &info) ? info.hwndFocus : nullptr;
}

// Input is handled in its order: when the marker has been taken, all before it is done with.
void DialogUser::Settle() const {
    Send({Key(MarkerKey, false), Key(MarkerKey, true)});
    const int sent = ++MarkersSent;
    EXPECT_TRUE(WaitFor([&] { return MarkersSeen >= sent || !IsWindow(Dialog_); }, PatienceMs)) << "input is not taken";
}

void DialogUser::Press(WORD key) {
    Send({Key(key, false), Key(key, true)});
    Settle();
}

void DialogUser::Type(const char* digits) {
    for (; *digits != 0; digits++) Press(static_cast<WORD>(*digits));  // a digit's key has its character's number
}

void DialogUser::Click(HWND window, int x, int y, int times) {
    POINT point = {x, y};
    ClientToScreen(window, &point);
    MovePointer(point);
    INPUT down = {}, up = {};
    down.type = up.type = INPUT_MOUSE;
    down.mi.dwFlags = MOUSEEVENTF_LEFTDOWN;
    up.mi.dwFlags = MOUSEEVENTF_LEFTUP;
    for (int i = 0; i < times; i++) Send({down, up});
    Settle();
}

void DialogUser::Click(HWND window) {
    RECT area = {};
    GetClientRect(window, &area);
    Click(window, area.right / 2, area.bottom / 2);
}

}  // namespace corvane::test
