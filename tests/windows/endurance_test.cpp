// What many recordings leave behind in the host's process: nothing.
#include <optional>

#include "tests/windows/recording_host.h"

// These two want windows.h before them.
#include <psapi.h>
#include <tlhelp32.h>

namespace corvane::test {
namespace {

struct ProcessLoad {
    int Threads = 0;
    DWORD Handles = OpenHandles();
    DWORD Bytes = 0;  // private memory

    ProcessLoad() {
        const HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0);
        THREADENTRY32 thread = {};
        thread.dwSize = sizeof thread;
        for (BOOL more = Thread32First(snapshot, &thread); more; more = Thread32Next(snapshot, &thread)) {
            Threads += thread.th32OwnerProcessID == GetCurrentProcessId();
        }
        CloseHandle(snapshot);
        PROCESS_MEMORY_COUNTERS memory = {};
        GetProcessMemoryInfo(GetCurrentProcess(), &memory, sizeof memory);
        Bytes = static_cast<DWORD>(memory.PagefileUsage);
    }
};

using Endurance = DriverTest;

// What the process holds may grow in the first cycles only.
TEST_F(Endurance, StartsStopsAndReleasesLeaveNothing) {
    constexpr float Rates[] = {1000, 500, 333, 100, 20, 4};  // Hz
    constexpr int First = 50, Last = 550;
    std::optional<ProcessLoad> before;
    ASSERT_TRUE(OpenSequence(2));
    for (int cycle = 0; cycle < Last; cycle++) {
        if (cycle == First) before.emplace();
        if (!Driver) Driver = CreateDriver();
        ASSERT_TRUE(True(Driver.Get(), &IADC3::get_Detected) || True(Driver.Get(), &IADC3::Test));
        ASSERT_TRUE(Start(Rates[cycle % 6])) << cycle;
        ASSERT_TRUE(cycle % 5 != 0 || WaitForKadrs(1)) << cycle;
        if (cycle % 7 < 6) {
            ASSERT_EQ(S_OK, Driver->StopRecord());
            ASSERT_FALSE(True(Driver.Get(), &IADC3::get_Busy));
        } else {
            Driver.Reset();
        }
        ASSERT_EQ(0, LtrSim_RunningModules()) << cycle;
        ASSERT_EQ(!Driver, LtrSim_OpenConnections() == 0) << cycle;
    }
    const ProcessLoad after;
    EXPECT_LE(after.Threads, before->Threads);
    EXPECT_LE(after.Handles, before->Handles + 4);
    EXPECT_LE(after.Bytes, before->Bytes + 1024 * 1024);
    std::printf("threads %d -> %d, handles %lu -> %lu, private KiB %lu -> %lu\n", before->Threads, after.Threads,
                before->Handles, after.Handles, before->Bytes / 1024, after.Bytes / 1024);
}

}  // namespace
}  // namespace corvane::test
