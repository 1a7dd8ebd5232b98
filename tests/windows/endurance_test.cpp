// What many recordings leave behind in the host's process: nothing.
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

class Endurance : public DriverTest {
protected:
    // Runs `cycle` so often; what the process holds may grow in the first tenth only.
    template <class Cycle>
    void Repeat(int times, Cycle cycle) {
        for (int i = 0; i < times / 10; i++) ASSERT_NO_FATAL_FAILURE(cycle(i));
        const ProcessLoad before;
        for (int i = times / 10; i < times; i++) ASSERT_NO_FATAL_FAILURE(cycle(i));
        const ProcessLoad after;
        EXPECT_LE(after.Threads, before.Threads);
        EXPECT_LE(after.Handles, before.Handles + 4);
        EXPECT_LE(after.Bytes, before.Bytes + 1024 * 1024);
        std::printf("threads %d -> %d, handles %lu -> %lu, private KiB %lu -> %lu\n", before.Threads, after.Threads,
                    before.Handles, after.Handles, before.Bytes / 1024, after.Bytes / 1024);
    }
};

constexpr float Rates[] = {1000, 500, 333, 100, 20, 4};  // Hz

TEST_F(Endurance, StartsAndStopsLeaveNothing) {
    ASSERT_TRUE(OpenSequence(2));
    Repeat(500, [&](int cycle) {
        ASSERT_TRUE(Start(Rates[cycle % 6])) << "cycle " << cycle;
        if (cycle % 5 == 0) {
            ASSERT_TRUE(WaitForKadrs(1));
        }
        ASSERT_EQ(S_OK, Driver->StopRecord());
        ASSERT_FALSE(True(Driver.Get(), &IADC3::get_Busy));
        ASSERT_EQ(0, LtrSim_RunningModules()) << "cycle " << cycle;
    });
}

TEST_F(Endurance, ReleasesInTheMiddleLeaveNothing) {
    Repeat(100, [&](int cycle) {
        if (!Driver) Driver = CreateDriver();
        ASSERT_TRUE(True(Driver.Get(), &IADC3::Test));
        ASSERT_TRUE(Start(Rates[cycle % 6]));
        if (cycle % 2 == 0) {
            ASSERT_TRUE(WaitForKadrs(1));
        }
        Driver.Reset();
        ASSERT_EQ(0, LtrSim_RunningModules()) << "cycle " << cycle;
        ASSERT_EQ(0, LtrSim_OpenConnections()) << "cycle " << cycle;
    });
}

}  // namespace
}  // namespace corvane::test
