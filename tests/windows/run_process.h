// Another program, run to its end.
#pragma once

#include <windows.h>

#include <string>

namespace corvane::test {

constexpr DWORD DidNotEnd = 0xFFFFFFFE;

// Its exit code; DidNotEnd when it had to be ended after the time-out, or never began. What it says goes to `output`.
inline DWORD RunProcess(std::wstring command, DWORD timeoutMs, HANDLE output = nullptr) {
    STARTUPINFOW startup = {};
    startup.cb = sizeof startup;
    startup.dwFlags = output != nullptr ? STARTF_USESTDHANDLES : 0;
    startup.hStdOutput = startup.hStdError = output;
    PROCESS_INFORMATION process = {};
    const BOOL inherit = output != nullptr;
    if (!CreateProcessW(nullptr, command.data(), nullptr, nullptr, inherit, 0, nullptr, nullptr, &startup, &process)) {
        return DidNotEnd;
    }
    DWORD code = DidNotEnd;
    if (WaitForSingleObject(process.hProcess, timeoutMs) == WAIT_OBJECT_0) {
        GetExitCodeProcess(process.hProcess, &code);
    } else {
        TerminateProcess(process.hProcess, DidNotEnd);
    }
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    return code;
}

}  // namespace corvane::test
