#include "bench/input_data.h"

#include <windows.h>
// windows.h first: the others build on it.
#include <ADCInterface3.h>
#include <objbase.h>
#include <oleauto.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <vector>

#include "bench/comparison.h"

namespace corvane::bench {

namespace {

using Clock = std::chrono::steady_clock;

constexpr LONG Channels = 32, Kadrs = 32768;
constexpr int Rounds = 15;

void Check(HRESULT result, const char* member) {
    if (FAILED(result)) throw std::runtime_error(member);
}

double MicrosecondsSince(Clock::time_point start) {
    return std::chrono::duration<double, std::micro>(Clock::now() - start).count();
}

IADC3* CreateDriver() {
    CLSID classIdentifier = {};
    IADC3* driver = nullptr;
    Check(CLSIDFromProgID(L"Tessmark.Corvane", &classIdentifier), "CLSIDFromProgID");
    Check(CoCreateInstance(classIdentifier, nullptr, CLSCTX_INPROC_SERVER, __uuidof(IADC3),
                           reinterpret_cast<void**>(&driver)),
          "CoCreateInstance");
    return driver;
}

void SelectAll(IADC3* driver) {
    SAFEARRAY* table = SafeArrayCreateVector(VT_I2, 0, Channels);
    for (LONG i = 0; i < Channels; i++) static_cast<short*>(table->pvData)[i] = static_cast<short>(i);
    Check(driver->put_InputChannels(&table), "InputChannels");
    SafeArrayDestroy(table);
}

// Fills the ring, and ends the recording so that nothing else runs meanwhile.
void Fill(IADC3* driver) {
    VARIANT_BOOL started = VARIANT_FALSE;
    Check(driver->StartRecord(&started), "StartRecord");
    LONG count = 0;
    for (const Clock::time_point start = Clock::now(); count < Kadrs;) {
        if (!started || MicrosecondsSince(start) > 30e6) throw std::runtime_error("the ring is not filled");
        Sleep(1);
        Check(driver->get_InputCountKadrs(&count), "InputCountKadrs");
    }
    Check(driver->StopRecord(), "StopRecord");
}

}  // namespace

double InputDataRatio() {
    Check(CoInitialize(nullptr), "CoInitialize");
    IADC3* const driver = CreateDriver();
    VARIANT_BOOL found = VARIANT_FALSE;
    Check(driver->Test(&found), "Test");
    SelectAll(driver);
    Check(driver->put_Rate(1000), "Rate");
    Check(driver->put_InputSizeData(Kadrs), "InputSizeData");
    std::vector<double> ours, plain;
    const std::vector<short> source(size_t{Channels} * (Kadrs + 1), 1);
    for (int round = 0; round < Rounds; round++) {
        Fill(driver);
        SAFEARRAY* data = nullptr;
        Clock::time_point start = Clock::now();
        Check(driver->get_InputData(&data), "InputData");
        ours.push_back(MicrosecondsSince(start));
        if (data->rgsabound[0].cElements != static_cast<ULONG>(Kadrs + 1))
            throw std::runtime_error("kadrs are missing");
        start = Clock::now();
        void* copy = std::malloc(source.size() * sizeof(short));
        std::memcpy(copy, source.data(), source.size() * sizeof(short));
        Keep(copy);
        plain.push_back(MicrosecondsSince(start));
        std::free(copy);
        SafeArrayDestroy(data);
    }
    driver->Release();
    CoUninitialize();
    std::sort(ours.begin(), ours.end());
    std::sort(plain.begin(), plain.end());
    return ours[Rounds / 2] / plain[Rounds / 2];
}

}  // namespace corvane::bench
