// What the tests' fixture needs of the platform, on Windows.
#include "tests/native/driver_fixture.h"
#include "tests/windows/com_host.h"

namespace corvane {

namespace platform {

// Windows can't be asked for these.
std::atomic<bool> SkipSleeps = false;
std::atomic<bool> FailThreadCreation = false;

void ClearRegistry() {}  // the settings of the test's own prefix harm nobody

}  // namespace platform

int Threads() {
    return test::RunningThreads();
}

}  // namespace corvane
