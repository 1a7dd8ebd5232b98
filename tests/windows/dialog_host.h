// A host window and a device, for tests in which a person uses the driver's dialogs.
#pragma once

#include <windows.h>

#include <commctrl.h>
#include <shlwapi.h>

#include <cstdio>
#include <fstream>
#include <functional>
#include <iterator>
#include <string>

#include "tests/windows/dialog_user.h"
#include "tests/windows/recording_host.h"

namespace corvane::test {

// Titles and texts in Russian, the language that the tests run in.
constexpr wchar_t AddressTitle[] = L"Выбор IP адреса";
constexpr wchar_t SetupTitle[] = L"Настройки LTR27 (v3.2.1)";
constexpr wchar_t ConnectText[] = L"Подключите LTR крейт и запустите LTR Server!";
constexpr wchar_t SelectText[] = L"Пожалуйста укажите IP адрес!";
constexpr wchar_t DeviceTitle[] = L"Select Device - IP: 127.0.0.1";
constexpr int MessageTextId = 0xFFFF;  // of the text in the platform's message boxes

inline std::string ListFile() {
    const std::wstring path = ComponentPath();
    return std::string(path.begin(), path.begin() + static_cast<ptrdiff_t>(path.rfind(L'\\') + 1)) + "iplist.txt";
}

inline std::string FileText() {
    std::ifstream file(ListFile(), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

constexpr wchar_t SettingsKey[] = L"Software\\Vrex\\ADC\\L-Card\\LTR27";

inline DWORD StoredMode() {
    DWORD mode = 99, size = sizeof mode;
    SHGetValueW(HKEY_CURRENT_USER, SettingsKey, L"MarkSTARTMode", nullptr, &mode, &size);
    return mode;
}

class Dialogs : public DriverTest {
protected:
    void SetUp() override {
        ForgetSettings();
        DriverTest::SetUp();
        // A host that takes input, as the dialogs come in front of it.
        Host = CreateWindowW(WC_STATICW, L"Host", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 40, 40, 500, 400, nullptr, nullptr,
                             nullptr, nullptr);
        SetForegroundWindow(Host);
        Hook = SetWindowsHookExW(WH_CALLWNDPROCRET, SeeTitle, nullptr, GetCurrentThreadId());
    }
    void TearDown() override {
        UnhookWindowsHookEx(Hook);
        DestroyWindow(Host);
        DriverTest::TearDown();
        ForgetSettings();
    }
    static void ForgetSettings() {
        std::remove(ListFile().c_str());
        RegDeleteKeyW(HKEY_CURRENT_USER, SettingsKey);
    }

    void Configure(const std::string& toml) { ASSERT_EQ(0, LtrSim_Configure(toml.c_str())) << LtrSim_Message(); }

    bool TestWith(const wchar_t* title, std::function<void(DialogUser&)> script) {
        const DialogUser user(title, std::move(script));
        const bool found = True(Driver.Get(), &IADC3::Test);
        EXPECT_TRUE(IsWindowEnabled(Host)) << "the host is usable again";
        return found;
    }

    void SettingWith(std::function<void(DialogUser&)> script, const wchar_t* title = SetupTitle) {
        const DialogUser user(title, std::move(script));
        EXPECT_FALSE(True(Driver.Get(), &IADC3::ShowSetting));
    }

    // The window whose title was drawn last as that of the active one.
    static inline HWND ActiveTitle = nullptr;
    static LRESULT CALLBACK SeeTitle(int code, WPARAM wParam, LPARAM lParam) {
        const CWPRETSTRUCT& sent = *reinterpret_cast<const CWPRETSTRUCT*>(lParam);
        if (sent.message == WM_NCACTIVATE && sent.wParam != FALSE) ActiveTitle = sent.hwnd;
        if (sent.message == WM_NCACTIVATE && sent.wParam == FALSE && ActiveTitle == sent.hwnd) ActiveTitle = nullptr;
        return CallNextHookEx(nullptr, code, wParam, lParam);
    }

    HWND Host = nullptr;
    HHOOK Hook = nullptr;
};

}  // namespace corvane::test
