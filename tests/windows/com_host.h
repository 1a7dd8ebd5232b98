// What a host does with the component: the apartment, registration, creation, reading members. For tests only.
#pragma once

#include <windows.h>

#include <ADCInterface3.h>
#include <CorvaneStatus.h>
#include <Tessmark.h>
#include <gtest/gtest.h>
#include <oleauto.h>
#include <wrl/client.h>

#include <memory>
#include <string>
#include <vector>

namespace corvane::test {

using Microsoft::WRL::ComPtr;

class Apartment {
public:
    Apartment() { CoInitialize(nullptr); }
    ~Apartment() { CoUninitialize(); }
    Apartment(const Apartment&) = delete;
};

// Full path of the component under test: that of the folder `stage`, which holds this executable or lies beside its
// folder.
std::wstring ComponentPath();

// A file of the folder `data`, which the build has copied to `tests`.
std::string TestData(const char* file);

// The component's file, loaded without COM's knowledge.
class LoadedComponent {
public:
    explicit LoadedComponent(const std::wstring& path = ComponentPath());
    ~LoadedComponent();
    LoadedComponent(const LoadedComponent&) = delete;

    HRESULT Call(const char* function) const;  // DllRegisterServer, DllUnregisterServer or DllCanUnloadNow
    HRESULT GetClassObject(const GUID& classIdentifier, const GUID& identifier, void** object) const;

private:
    template <class Entry>
    Entry Find(const char* function) const {
        return reinterpret_cast<Entry>(reinterpret_cast<void*>(GetProcAddress(Module_, function)));
    }
    HMODULE Module_;
};

// Exit code of another program, run to its end; DidNotEnd when it had to be ended after the time-out, or never began.
// What it says goes to `output`.
constexpr DWORD DidNotEnd = 0xFFFFFFFE;
DWORD RunProcess(std::wstring command, DWORD timeoutMs, HANDLE output = nullptr);

// Grows with each handle that this process leaves open, whatever it counts from.
DWORD OpenHandles();

// Threads of this process.
int RunningThreads();

// Creates an object by its programmatic identifier. Null when that fails.
ComPtr<IADC3> CreateDriver();

template <class Value>
Value Read(IADC3* driver, HRESULT (STDMETHODCALLTYPE IADC3::*member)(Value*)) {
    Value value = {};
    EXPECT_EQ(S_OK, (driver->*member)(&value));
    return value;
}

inline bool True(IADC3* driver, HRESULT (STDMETHODCALLTYPE IADC3::*member)(VARIANT_BOOL*)) {
    return Read(driver, member) == VARIANT_TRUE;
}

std::wstring LastError(IADC3* driver);

// Arguments in the order of the declaration; a put names its last one.
HRESULT InvokeByName(IDispatch* object, std::wstring name, WORD flags, std::vector<VARIANT> arguments, VARIANT* result);

struct ArrayDestroyer {
    void operator()(SAFEARRAY* array) const { SafeArrayDestroy(array); }
};
using Array = std::unique_ptr<SAFEARRAY, ArrayDestroyer>;

Array MakeShorts(const std::vector<short>& values, LONG lowerBound);
// The numbers of all gaps, four each; something else when the array isn't made so.
std::vector<double> GapNumbers(SAFEARRAY* gaps);
void SelectChannels(IADC3* driver, const std::vector<short>& channels);
std::vector<short> SelectedChannels(IADC3* driver);

// Polls until `condition` holds; false after the time-out.
template <class Condition>
bool WaitFor(Condition condition, DWORD timeoutMs) {
    for (const DWORD start = GetTickCount(); !condition();) {
        if (GetTickCount() - start > timeoutMs) return false;
        Sleep(1);
    }
    return true;
}

}  // namespace corvane::test
