// A person at the component's dialogs: waits for a window of this process and uses keyboard and mouse, while the test's
// own thread is inside the driver.
#pragma once

#include <windows.h>

#include <functional>
#include <string>
#include <thread>
#include <vector>

namespace corvane::test {

class DialogUser {
public:
    // Runs `script` once a window with that title has appeared. The window is closed afterwards, if it still is there:
    // a script that goes wrong must not hold the test.
    DialogUser(std::wstring title, std::function<void(DialogUser&)> script);
    ~DialogUser();
    DialogUser(const DialogUser&) = delete;

    // Waits until the window that takes input has this title.
    bool WaitFront(const std::wstring& title);
    HWND Dialog() const { return Dialog_; }
    // The n-th child window of that class, 0 the first.
    HWND Child(const wchar_t* windowClass, int n) const;
    HWND Focus() const;

    // What is typed has been handled when these return.
    void Press(WORD key);
    void Type(const char* digits);
    void Click(HWND window, int x, int y, int times = 1);  // in its client area
    void Click(HWND window);                               // in the middle

private:
    void Settle() const;

    HHOOK Hook_;
    HWND Dialog_ = nullptr;
    std::thread Thread_;
};

std::wstring TextOf(HWND window);
std::vector<std::wstring> ListLines(HWND list);

}  // namespace corvane::test
