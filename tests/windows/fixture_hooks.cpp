// What the tests' fixture needs of the platform, on Windows.
#include <windows.h>

#include <tlhelp32.h>

#include "tests/native/driver_fixture.h"

namespace corvane {

namespace platform {

// Windows can't be asked for these.
std::atomic<bool> SkipSleeps = false;
std::atomic<bool> FailThreadCreation = false;

void ClearRegistry() {}  // the settings of the test's own prefix harm nobody

}  // namespace platform

int Threads() {
    int threads = 0;
    const HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0);
    THREADENTRY32 thread = {};
    thread.dwSize = sizeof thread;
    for (BOOL more = Thread32First(snapshot, &thread); more; more = Thread32Next(snapshot, &thread)) {
        threads += thread.th32OwnerProcessID == GetCurrentProcessId();
    }
    CloseHandle(snapshot);
    return threads;
}

}  // namespace corvane
