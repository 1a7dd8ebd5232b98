#include "recorder/console.h"

#include <windows.h>
// windows.h first: the other builds on it.
#include <shellapi.h>

#include <atomic>

#include "platform/win32/wide_text.h"

namespace corvane::recorder {
namespace {

std::atomic<bool> Interrupted = false;  // set by the system's console thread

HANDLE ConsoleOf(std::FILE* stream) {
    return GetStdHandle(stream == stdout ? STD_OUTPUT_HANDLE : STD_ERROR_HANDLE);
}

BOOL WINAPI OnConsoleEvent(DWORD event) {
    const bool again = Interrupted.exchange(true);
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

bool UserReadsRussian() {
    return PRIMARYLANGID(GetUserDefaultUILanguage()) == LANG_RUSSIAN;
}

void WatchInterrupt() {
    SetConsoleCtrlHandler(OnConsoleEvent, TRUE);
}

bool InterruptRequested() {
    return Interrupted;
}

}  // namespace corvane::recorder
