// Recordings through COM: every kadr reaches the host once and in order, however it reads; and what is left when
// the modules fail or many recordings have ended.
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <optional>
#include <random>
#include <thread>

#include "tests/windows/recording_host.h"

// These two want windows.h before them.
#include <psapi.h>
#include <tlhelp32.h>

namespace corvane::test {
namespace {

constexpr LONG EnoughKadrs = 100000;  // three rounds of the even channels' count
constexpr LONG RingKadrs = 2048;      // small, so that a stalled host finds it full
constexpr DWORD Patience = 60000;     // ms; a block of 64 kadrs takes the driver some 5 ms

using Recording = DriverTest;

// Reads once with room for `samples`, and checks what GetData says about it.
LONG TakeData(IADC3* driver, LONG samples, SequenceCheck& check) {
    constexpr short Canary = 0x5A5A;
    std::vector<short> buffer(static_cast<size_t>(samples) + 1, Canary);
    LONG count = samples, remaining = -1, kadrs = -1;
    EXPECT_EQ(S_OK, driver->GetData(buffer.data(), &count, &remaining, &kadrs));
    EXPECT_EQ(kadrs * 32, count);
    EXPECT_EQ(0, remaining % 32);
    EXPECT_EQ(Canary, buffer.at(static_cast<size_t>(count))) << "written beyond the count";
    check.Take(buffer.data(), kadrs);
    return kadrs;
}

// Takes all unread kadrs with InputData. False when the array isn't one kadr of channel numbers and then data.
bool TakeInputData(IADC3* driver, LONG channels, SequenceCheck& check) {
    const Array data(Read(driver, &IADC3::get_InputData));
    if (!data || SafeArrayGetDim(data.get()) != 2) return false;
    const SAFEARRAYBOUND kadrs = data->rgsabound[0], width = data->rgsabound[1];  // the last dimension comes first
    if (kadrs.lLbound != 0 || width.lLbound != 0 || width.cElements != static_cast<ULONG>(channels)) return false;
    const short* first = static_cast<const short*>(data->pvData);
    if (std::vector<short>(first, first + channels) != FirstChannels(channels)) return false;
    check.Take(first + channels, static_cast<LONG>(kadrs.cElements) - 1);
    return true;
}

TEST_F(Recording, DeliversEveryKadrOnceHoweverItIsRead) {
    ASSERT_TRUE(OpenSequence(2));
    ASSERT_EQ(S_OK, Driver->put_InputSizeData(RingKadrs));
    ASSERT_TRUE(Start(1000));
    ASSERT_EQ(RingKadrs, Read(Driver.Get(), &IADC3::get_InputSizeKadrs));
    SequenceCheck check(2);
    std::mt19937 random(27);
    bool ringWasFull = false;
    for (const DWORD start = GetTickCount(); check.Kadrs() < EnoughKadrs && GetTickCount() - start < Patience;) {
        Sleep(random() % 40 == 0 ? 400 : random() % 60);
        ringWasFull |= Read(Driver.Get(), &IADC3::get_InputCountKadrs) == RingKadrs;
        ASSERT_TRUE(random() % 2 == 0 || TakeInputData(Driver.Get(), 32, check));
        TakeData(Driver.Get(), static_cast<LONG>(random() % (2 * RingKadrs * 32)), check);
    }
    ASSERT_EQ(S_OK, Driver->StopRecord());
    while (TakeData(Driver.Get(), 32 * 100, check) > 0) continue;
    EXPECT_EQ("", check.Fault());
    EXPECT_GE(check.Kadrs(), EnoughKadrs);
    EXPECT_TRUE(ringWasFull);
    EXPECT_EQ(0, Read(Driver.Get(), &IADC3::get_InputCountData));
    ASSERT_TRUE(TakeInputData(Driver.Get(), 32, check)) << "only the channel numbers are left";
}

// Opens, and records `kadrs` kadrs. Says what went wrong.
std::string Record(IADC3* driver, float rate, LONG kadrs) {
    if (!True(driver, &IADC3::Test)) return "not opened";
    SelectChannels(driver, FirstChannels(32));
    driver->put_Rate(rate);
    if (!True(driver, &IADC3::StartRecord)) return "not started";
    if (std::abs(Read(driver, &IADC3::get_Rate) - rate) > 0.01f) return "the other thread's rate";
    SequenceCheck check(2);
    for (const DWORD start = GetTickCount(); check.Kadrs() < kadrs; Sleep(10)) {
        if (GetTickCount() - start > Patience) return "too slow: " + std::to_string(check.Kadrs()) + " kadrs";
        if (!TakeInputData(driver, 32, check)) return "wrong array";
    }
    return check.Fault();
}

// One host thread with an object of its own. A thread that serves no messages gets a proxy; the object then lives in a
// thread that COM starts for it.
std::string RecordAsHost(DWORD model, float rate, LONG kadrs) {
    CoInitializeEx(nullptr, model);
    std::string fault = "no object";
    if (const ComPtr<IADC3> driver = CreateDriver()) {
        ComPtr<IMultiQI> proxy;
        const bool asExpected = SUCCEEDED(driver.As(&proxy)) == (model == COINIT_MULTITHREADED);
        fault = asExpected ? Record(driver.Get(), rate, kadrs) : "proxies where none should be, or none";
    }
    CoUninitialize();
    return fault;
}

TEST_F(Recording, HostThreadsRecordSideBySide) {
    ASSERT_TRUE(OpenSequence(2));
    std::string results[3];
    std::thread first([&] { results[0] = RecordAsHost(COINIT_APARTMENTTHREADED, 1000, 30000); });
    std::thread second([&] { results[1] = RecordAsHost(COINIT_APARTMENTTHREADED, 500, 10000); });
    std::thread third([&] { results[2] = RecordAsHost(COINIT_MULTITHREADED, 250, 10000); });
    for (std::thread* thread : {&first, &second, &third}) thread->join();
    for (const std::string& result : results) EXPECT_EQ("", result);
    EXPECT_TRUE(True(Driver.Get(), &IADC3::get_Detected)) << "this thread's device stays open";
}

// Wine starts the surrogate from the process that asks for it and never lets it go; Windows does neither.
void EndSurrogate() {
    const HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0);
    PROCESSENTRY32W entry = {};
    entry.dwSize = sizeof entry;
    for (BOOL more = Process32FirstW(snapshot, &entry); more; more = Process32NextW(snapshot, &entry)) {
        if (entry.th32ParentProcessID != GetCurrentProcessId() || lstrcmpiW(entry.szExeFile, L"dllhost.exe")) continue;
        const HANDLE process = OpenProcess(PROCESS_TERMINATE | SYNCHRONIZE, FALSE, entry.th32ProcessID);
        TerminateProcess(process, 0);
        EXPECT_EQ(WAIT_OBJECT_0, WaitForSingleObject(process, 5000));
        CloseHandle(process);
    }
    CloseHandle(snapshot);
}

TEST_F(Recording, WorksFromAnotherProcess) {
    const std::filesystem::path scenario = ComponentPath() + L".toml";
    std::ofstream(scenario) << SequenceScenario(2) << "[[fault]]\ncall = \"LTR27_Recv\"\nafter = 1000\nstall = true\n";
    SetEnvironmentVariableW(L"LTRSIM_SCENARIO", scenario.c_str());
    ComPtr<_Corvane> object;
    EXPECT_EQ(S_OK, CoCreateInstance(__uuidof(::Corvane), nullptr, CLSCTX_LOCAL_SERVER, IID_PPV_ARGS(&object)));
    SetEnvironmentVariableW(L"LTRSIM_SCENARIO", nullptr);
    ComPtr<IUnknown> driver;
    ComPtr<IADC3> remote;
    const bool reached = object && SUCCEEDED(object->GetADC3(driver.GetAddressOf())) && SUCCEEDED(driver.As(&remote));
    EXPECT_EQ("", reached ? Record(remote.Get(), 1000, 10000) : "no driver");
    EXPECT_EQ(0, LtrSim_OpenConnections()) << "it was this process that recorded";
    // The other interface crosses the border, too; so does its list, empty or not.
    ComPtr<ICorvaneStatus> status;
    EXPECT_TRUE(reached && SUCCEEDED(remote.As(&status)));
    SAFEARRAY* gaps = nullptr;
    double recorded = 0;
    std::vector<double> numbers;
    EXPECT_TRUE(status && status->get_Gaps(&gaps) == S_OK);
    EXPECT_EQ(numbers, GapNumbers(Array(gaps).get()));
    const auto silent = [&] {
        SequenceCheck any(2);
        TakeInputData(remote.Get(), 32, any);
        status->get_Gaps(&gaps);
        numbers = GapNumbers(Array(gaps).get());
        return !numbers.empty();
    };
    EXPECT_TRUE(status && WaitFor(silent, Patience));
    EXPECT_TRUE(numbers.size() >= 4 && numbers[1] >= 10000 && numbers[3] == 2);
    EXPECT_TRUE(status && status->get_KadrsRecorded(&recorded) == S_OK && recorded > 10000);
    EXPECT_TRUE(!reached || remote->StopRecord() == S_OK);
    status.Reset();
    driver.Reset();
    remote.Reset();
    object.Reset();
    EndSurrogate();
    DeleteFileW(scenario.c_str());
}

// The thread sits in a receive that takes its whole time-out; the host must neither wait for it nor start beside it.
TEST_F(Recording, ASilentModuleHoldsOnlyTheNextStart) {
    EXPECT_EQ(0, Read(Driver.Get(), &IADC3::get_BasePort));
    ASSERT_TRUE(OpenSequence(1));
    EXPECT_EQ(-1, Read(Driver.Get(), &IADC3::get_BasePort));
    ASSERT_TRUE(Start(1000));
    ASSERT_EQ(0, LtrSim_AddFault("call = \"LTR27_Recv\"\nstall = true\n")) << LtrSim_Message();
    const int32_t calls = LtrSim_Calls("LTR27_Recv");
    ASSERT_TRUE(WaitFor([&] { return LtrSim_Calls("LTR27_Recv") > calls + 1; }, 5000));
    const DWORD start = GetTickCount();
    EXPECT_EQ(S_OK, Driver->StopRecord());
    EXPECT_LT(GetTickCount() - start, 400u) << "two block periods are 128 ms";
    EXPECT_FALSE(Start(1000));
    EXPECT_EQ(L"Please wait end of previous thread of recording!", LastError(Driver.Get()));
    LtrSim_ClearFaults();
    EXPECT_TRUE(WaitFor([&] { return Start(1000); }, 3000));
    EXPECT_EQ(L"", LastError(Driver.Get()));
}

TEST_F(Recording, WhatADeadThreadLeftEndsWithTheLibrary) {
    const std::wstring copy = ComponentPath() + L".copy";  // a library of its own, which nothing else keeps
    ASSERT_TRUE(CopyFileW(ComponentPath().c_str(), copy.c_str(), FALSE));
    {
        const LoadedComponent file(copy);
        const auto create = [&] {
            ComPtr<IClassFactory> factory;
            ComPtr<IADC3> driver;
            EXPECT_EQ(S_OK, file.GetClassObject(__uuidof(::Corvane), IID_PPV_ARGS(&factory)));
            EXPECT_EQ(S_OK, factory->CreateInstance(nullptr, IID_PPV_ARGS(&driver)));
            return driver;
        };
        std::thread([&] {
            IADC3* const driver = create().Detach();  // never released
            EXPECT_TRUE(True(driver, &IADC3::Test) && True(driver, &IADC3::StartRecord));
            EXPECT_EQ(0, LtrSim_AddFault("call = \"LTR27_Recv\"\ndelay = 1e6\n"));
            EXPECT_TRUE(WaitFor([&] { return LtrSim_DelayedCalls() > 0; }, 5000));
        }).join();
        for (int heir = 0; heir < 5; heir++) {
            std::thread([&] { EXPECT_FALSE(True(create().Get(), &IADC3::get_Detected)); }).join();
        }
        EXPECT_EQ(2, LtrSim_OpenConnections());
    }
    const auto gone = [&] { return GetModuleHandleW(copy.c_str()) == nullptr; };
    EXPECT_FALSE(gone()) << "the recording thread sits in a receive";
    LtrSim_ClearFaults();
    EXPECT_TRUE(WaitFor(gone, 8000));
    DeleteFileW(copy.c_str());
    EXPECT_EQ(0, LtrSim_RunningModules());
    EXPECT_EQ(0, LtrSim_OpenConnections());
}

struct ProcessLoad {
    int Threads = RunningThreads();
    DWORD Handles = OpenHandles();
    DWORD Bytes = 0;  // private memory

    ProcessLoad() {
        PROCESS_MEMORY_COUNTERS memory = {};
        GetProcessMemoryInfo(GetCurrentProcess(), &memory, sizeof memory);
        Bytes = static_cast<DWORD>(memory.PagefileUsage);
    }
};

// What the process holds may grow in the first cycles only.
TEST_F(Recording, StartsStopsAndReleasesLeaveNothing) {
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
