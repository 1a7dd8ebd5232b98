#include "platform/event_log.h"

#include <array>
#include <cstdio>

#include "platform/win32/plain_file.h"
#include "platform/win32/wide_text.h"

namespace corvane::platform {

namespace {

std::wstring Environment(const wchar_t* name) {
    std::wstring text(32768, L'\0');  // no variable is longer
    text.resize(GetEnvironmentVariableW(name, text.data(), static_cast<DWORD>(text.size())));
    return text;
}

std::wstring LogPath() {
    std::wstring path = Environment(L"CORVANE_LOG");
    if (path.empty()) path = Environment(L"USERPROFILE") + L"\\Corvane.log";
    return path;
}

HANDLE OpenLog(const std::wstring& path, DWORD disposition) {
    return CreateFileW(path.c_str(), FILE_APPEND_DATA | FILE_READ_ATTRIBUTES,
                       FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, disposition,
                       FILE_FLAG_OPEN_REPARSE_POINT, nullptr);
}

// A log with room for one more line, or INVALID_HANDLE_VALUE.
HANDLE OpenWithRoom(const std::wstring& path) {
    const HANDLE log = OpenLog(path, OPEN_EXISTING);
    if (log == INVALID_HANDLE_VALUE) return log;
    int64_t size = 0;
    const bool plain = IsPlainFile(log, size);
    if (plain && size < LogBytesMax) return log;
    CloseHandle(log);
    if (!plain) return INVALID_HANDLE_VALUE;
    if (!MoveFileExW(path.c_str(), (path + L".old").c_str(), MOVEFILE_REPLACE_EXISTING)) return INVALID_HANDLE_VALUE;
    return OpenLog(path, CREATE_NEW);
}

std::string Time() {
    SYSTEMTIME now = {};
    GetSystemTime(&now);
    std::array<char, 32> text{};
    const int length = std::snprintf(text.data(), text.size(), "%04d-%02d-%02dT%02d:%02d:%02d.%03dZ", now.wYear,
                                     now.wMonth, now.wDay, now.wHour, now.wMinute, now.wSecond, now.wMilliseconds);
    return {text.data(), static_cast<size_t>(length)};
}

}  // namespace

bool LogKept() noexcept {
    const DWORD error = GetLastError();
    bool kept = false;
    try {
        kept = GetFileAttributesW(LogPath().c_str()) != INVALID_FILE_ATTRIBUTES;
    } catch (...) {
        // No memory for its name.
    }
    SetLastError(error);
    return kept;
}

void AppendToLog(std::string_view event) noexcept {
    const DWORD error = GetLastError();
    try {
        const HANDLE log = OpenWithRoom(LogPath());
        if (log != INVALID_HANDLE_VALUE) {
            const std::string line = LogLine(Time(), GetCurrentProcessId(), GetCurrentThreadId(), event);
            DWORD written = 0;
            WriteFile(log, line.data(), static_cast<DWORD>(line.size()), &written, nullptr);
            CloseHandle(log);
        }
    } catch (...) {
        // No memory for a line: the work goes on without it.
    }
    SetLastError(error);
}

}  // namespace corvane::platform
