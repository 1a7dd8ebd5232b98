#include "recorder/console.h"

#include <windows.h>
// windows.h first: the other builds on it.
#include <shellapi.h>

#include <algorithm>
#include <atomic>
#include <utility>

#include "platform/win32/wide_text.h"
#include "recorder/text_columns.h"

namespace corvane::recorder {
namespace {

std::atomic<bool> Interrupted = false;  // set by the system's console thread
HANDLE Shown = nullptr;                 // the buffer of the screen, where there is one
HANDLE Hidden = nullptr;                // and the one that it hides

// Wine draws a buffer that comes back only where something is written on it: each row once more.
void ShowHidden() {
    CONSOLE_SCREEN_BUFFER_INFO info{};
    if (!SetConsoleActiveScreenBuffer(Hidden) || !GetConsoleScreenBufferInfo(Hidden, &info)) return;
    for (SMALL_RECT row = info.srWindow; row.Top <= info.srWindow.Bottom; row.Top++) {
        row.Bottom = row.Top;
        const COORD size = {static_cast<SHORT>(row.Right - row.Left + 1), 1};
        std::vector<CHAR_INFO> cells(static_cast<size_t>(size.X));
        SMALL_RECT place = row;
        if (ReadConsoleOutputW(Hidden, cells.data(), size, {0, 0}, &place)) {
            WriteConsoleOutputW(Hidden, cells.data(), size, {0, 0}, &place);
        }
    }
}

HANDLE ConsoleOf(std::FILE* stream) {
    return GetStdHandle(stream == stdout ? STD_OUTPUT_HANDLE : STD_ERROR_HANDLE);
}

BOOL WINAPI OnConsoleEvent(DWORD event) {
    const bool again = Interrupted.exchange(true);
    if (again && Hidden != nullptr) ShowHidden();
    if (event == CTRL_C_EVENT || event == CTRL_BREAK_EVENT) return again ? FALSE : TRUE;
    // The system ends the process as soon as this returns from a closing event, and after 5 s anyway: the time between
    // is for the recording to end in order.
    Sleep(4500);
    return TRUE;
}

}  // namespace

std::vector<std::string> CommandLineArguments(int, const char* const*) {
    int count = 0;
    wchar_t** values = CommandLineToArgvW(GetCommandLineW(), &count);
    std::vector<std::string> arguments;
    for (int i = 1; i < count; i++) arguments.push_back(platform::Utf8(values[i]));
    LocalFree(values);
    return arguments;
}

void SetVariable(const std::string& name, const std::u8string& value) {
    SetEnvironmentVariableW(platform::Wide(name).c_str(),
                            platform::Wide({reinterpret_cast<const char*>(value.data()), value.size()}).c_str());
}

// A console takes UTF-16, whatever its code page and font can do; a pipe or file gets the UTF-8 as it is.
bool WriteText(std::FILE* stream, std::string_view text) {
    if (IsTerminal(stream)) {
        bool whole = true;
        const std::wstring utf16 = platform::Wide(text);
        constexpr size_t Piece = 8192;  // units; old consoles refuse more than 64 KB at once
        for (size_t start = 0; start < utf16.size(); start += Piece) {
            const auto length = static_cast<DWORD>(std::min(Piece, utf16.size() - start));
            DWORD written = 0;
            whole = WriteConsoleW(ConsoleOf(stream), utf16.data() + start, length, &written, nullptr) != FALSE && whole;
        }
        return whole;
    }
    return std::fwrite(text.data(), 1, text.size(), stream) == text.size() && std::fflush(stream) == 0;
}

bool IsTerminal(std::FILE* stream) {
    DWORD mode = 0;
    return GetConsoleMode(ConsoleOf(stream), &mode) != 0;
}

ScreenSize TerminalSize(std::FILE* stream) {
    CONSOLE_SCREEN_BUFFER_INFO info{};
    if (!GetConsoleScreenBufferInfo(Shown != nullptr ? Shown : ConsoleOf(stream), &info)) return {};
    const auto size = [](SHORT first, SHORT last) { return static_cast<size_t>(std::max(last - first + 1, 1)); };
    return {size(info.srWindow.Left, info.srWindow.Right), size(info.srWindow.Top, info.srWindow.Bottom)};
}

bool UserReadsRussian() {
    return PRIMARYLANGID(GetUserDefaultUILanguage()) == LANG_RUSSIAN;
}

void WatchInterrupt() {
    SetConsoleCtrlHandler(OnConsoleEvent, TRUE);
}

bool InterruptRequested() {
    return Interrupted;
}

// A screen buffer of its own, which every console can have. With its last handle it goes, however the program ends, and
// the console shows the one before.
Screen::Screen() {
    // Not that of standard output: under Wine it stands for whichever buffer is shown.
    HANDLE before = CreateFileW(L"CONOUT$", GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                OPEN_EXISTING, 0, nullptr);
    HANDLE buffer = CreateConsoleScreenBuffer(GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                              CONSOLE_TEXTMODE_BUFFER, nullptr);
    if (before == INVALID_HANDLE_VALUE || buffer == INVALID_HANDLE_VALUE) return;  // drawing will tell
    SetConsoleActiveScreenBuffer(buffer);
    const CONSOLE_CURSOR_INFO hidden = {1, FALSE};
    SetConsoleCursorInfo(buffer, &hidden);
    Shown = buffer;
    Hidden = before;
}

Screen::~Screen() {
    if (Shown == nullptr) return;
    ShowHidden();
    CloseHandle(std::exchange(Shown, nullptr));
    CloseHandle(std::exchange(Hidden, nullptr));
}

// Every cell of the window is written, none twice, so that nothing flickers.
bool Screen::Draw(const std::vector<std::string>& lines, ScreenSize size) {
    CONSOLE_SCREEN_BUFFER_INFO info{};
    if (!GetConsoleScreenBufferInfo(Shown, &info)) return false;
    for (size_t row = 0; row < size.Rows; row++) {
        const std::wstring text = platform::Wide(Fitted(row < lines.size() ? lines[row] : "", size.Columns));
        const COORD place = {info.srWindow.Left, static_cast<SHORT>(info.srWindow.Top + static_cast<int>(row))};
        DWORD written = 0;
        if (!WriteConsoleOutputCharacterW(Shown, text.data(), static_cast<DWORD>(text.size()), place, &written)) {
            return false;
        }
    }
    return true;
}

}  // namespace corvane::recorder
