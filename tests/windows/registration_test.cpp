// The component as the platform sees it: its file, its registry entries, its class and its coming and going. This
// executable lies in another folder than the component.
#include <olectl.h>

#include <algorithm>
#include <atomic>
#include <thread>

#include "driver/com/identifiers.h"
#include "tests/windows/com_host.h"

namespace corvane::test {
namespace {

class Registration : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_EQ(S_OK, LoadedComponent().Call("DllRegisterServer")); }
    void TearDown() override { EXPECT_EQ(S_OK, LoadedComponent().Call("DllUnregisterServer")); }

    Apartment Com;
};

ComPtr<IUnknown> Query(IUnknown* object, const GUID& identifier) {
    ComPtr<IUnknown> result;
    EXPECT_EQ(S_OK, object->QueryInterface(identifier, reinterpret_cast<void**>(result.GetAddressOf())));
    return result;
}

TEST_F(Registration, ObjectObeysTheRulesOfIdentity) {
    const ComPtr<IADC3> driver = CreateDriver();
    ASSERT_NE(nullptr, driver);
    const ComPtr<IUnknown> identity = Query(driver.Get(), __uuidof(IUnknown));
    const ComPtr<IUnknown> own = Query(driver.Get(), __uuidof(_Corvane));
    EXPECT_EQ(own, Query(driver.Get(), EarlierCorvane));
    EXPECT_EQ(own, Query(driver.Get(), __uuidof(IDispatch)));
    for (const GUID& identifier : {__uuidof(IUnknown), __uuidof(IDispatch), __uuidof(_Corvane), EarlierCorvane,
                                   __uuidof(IADC3), __uuidof(ICorvaneStatus), __uuidof(IProvideClassInfo)}) {
        const ComPtr<IUnknown> face = Query(identity.Get(), identifier);
        ASSERT_NE(nullptr, face);
        EXPECT_EQ(identity, Query(face.Get(), __uuidof(IUnknown)));
        EXPECT_EQ(driver.Get(), Query(face.Get(), __uuidof(IADC3)).Get());
    }
    void* other = &other;
    EXPECT_EQ(E_NOINTERFACE, driver->QueryInterface(__uuidof(IClassFactory), &other));
    EXPECT_EQ(nullptr, other);

    ComPtr<IDispatch> parent;
    EXPECT_EQ(S_OK, driver->get_Parent(parent.GetAddressOf()));
    EXPECT_EQ(own.Get(), parent.Get());
}

// The component without registration: the descriptions come out of its file.
class Component : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_EQ(S_OK, File.GetClassObject(__uuidof(::Corvane), IID_PPV_ARGS(&Factory))); }

    const Apartment Com;
    const LoadedComponent File;
    ComPtr<IClassFactory> Factory;
};

TEST_F(Component, AnswersByNameWithoutRegistration) {
    ComPtr<_Corvane> object;
    ASSERT_EQ(S_OK, Factory->CreateInstance(nullptr, IID_PPV_ARGS(&object)));
    VARIANT result = {};
    ASSERT_EQ(S_OK, InvokeByName(object.Get(), L"GetADC3", DISPATCH_METHOD, {}, &result));
    ASSERT_EQ(VT_UNKNOWN, result.vt);
    ComPtr<IUnknown> direct;
    ComPtr<IADC3> driver;
    ASSERT_TRUE(object->GetADC3(direct.GetAddressOf()) == S_OK && direct.As(&driver) == S_OK);
    EXPECT_EQ(direct.Get(), result.punkVal);
    VariantClear(&result);
    ASSERT_EQ(S_OK, InvokeByName(driver.Get(), L"adcname", DISPATCH_PROPERTYGET, {}, &result));
    ASSERT_EQ(VT_BSTR, result.vt);
    EXPECT_STREQ(L"LTR27", result.bstrVal);
    VariantClear(&result);
    ComPtr<IProvideClassInfo> provider;
    ComPtr<ITypeInfo> type;
    TYPEATTR* attributes = nullptr;
    ASSERT_TRUE(direct.As(&provider) == S_OK && provider->GetClassInfo(type.GetAddressOf()) == S_OK);
    ASSERT_EQ(S_OK, type->GetTypeAttr(&attributes));
    EXPECT_TRUE(attributes->guid == __uuidof(::Corvane) && attributes->cImplTypes == 2);
    type->ReleaseTypeAttr(attributes);
}

TEST_F(Component, RefusesWhatItsFactoryCantMake) {
    void *outer = this, *wrong = this, *none = this;
    EXPECT_EQ(CLASS_E_CLASSNOTAVAILABLE, File.GetClassObject(__uuidof(IADC3), __uuidof(IClassFactory), &none));
    EXPECT_EQ(CLASS_E_NOAGGREGATION, Factory->CreateInstance(Factory.Get(), __uuidof(IUnknown), &outer));
    EXPECT_EQ(E_NOINTERFACE, Factory->CreateInstance(nullptr, __uuidof(IClassFactory), &wrong));
    EXPECT_TRUE(outer == nullptr && wrong == nullptr);
}

bool Loaded() {
    return GetModuleHandleW(L"Corvane.adc") != nullptr;
}

// Thread-local slots that the process has left.
size_t FreeSlots() {
    std::vector<DWORD> slots;
    for (DWORD slot = 0; (slot = TlsAlloc()) != TLS_OUT_OF_INDEXES;) slots.push_back(slot);
    for (const DWORD slot : slots) TlsFree(slot);
    return slots.size();
}

// Memory of all heaps that is in use.
size_t HeapBytes() {
    HANDLE heaps[64];
    size_t bytes = 0;
    for (DWORD i = 0, count = std::min(GetProcessHeaps(64, heaps), DWORD{64}); i < count; i++) {
        PROCESS_HEAP_ENTRY entry = {};
        while (HeapWalk(heaps[i], &entry)) bytes += (entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) ? entry.cbData : 0;
    }
    return bytes;
}

TEST_F(Registration, LibraryLeavesWhenNothingUsesItAndComesAgain) {
    // The vendor libraries stay, so that only the component's own leavings are seen.
    const std::wstring folder = ComponentPath().substr(0, ComponentPath().rfind(L'\\') + 1);
    const HMODULE vendor = LoadLibraryExW((folder + L"ltr27api.dll").c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
    DWORD handles = 0;
    size_t slots = 0, bytes = 0;
    for (int round = 0; round < 40; round++) {
        ComPtr<IADC3> driver = CreateDriver();
        ASSERT_NE(nullptr, driver);
        CoFreeUnusedLibrariesEx(0, 0);
        ASSERT_TRUE(Loaded()) << "an object still lives";
        SAFEARRAY nothing = {}, *table = &nothing;
        EXPECT_EQ(E_INVALIDARG, driver->put_InputChannels(&table)) << "an exception inside takes resources too";
        driver.Reset();
        ASSERT_TRUE(WaitFor([] { return CoFreeUnusedLibrariesEx(0, 0), !Loaded(); }, 2000)) << "round " << round;
        if (round == 0) handles = OpenHandles(), slots = FreeSlots(), bytes = HeapBytes();
    }
    EXPECT_LE(HeapBytes(), bytes + 39 * 1024) << "some 500 bytes a round are the compiler's thread runtime's and COM's";
    EXPECT_LE(OpenHandles(), handles + 4);
    EXPECT_EQ(slots, FreeSlots());
    FreeLibrary(vendor);
}

TEST_F(Registration, ObjectsOfManyThreadsKeepApartAndLeave) {
    std::atomic<int> faults = 0;
    std::vector<std::thread> threads;
    for (const float rate : {10.0f, 100.0f, 500.0f, 1000.0f}) {
        threads.emplace_back([&faults, rate] {
            const Apartment apartment;
            for (int round = 0; round < 200; round++) {
                const ComPtr<IADC3> driver = CreateDriver();
                if (driver) driver->put_Rate(rate);
                Sleep(1);  // the others' turn; all wake up at once
                faults += !driver || Read(driver.Get(), &IADC3::get_Rate) != rate;
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(0, faults);
    EXPECT_TRUE(WaitFor([] { return CoFreeUnusedLibrariesEx(0, 0), !Loaded(); }, 2000)) << "something still uses it";
}

TEST_F(Component, StaysForLocksAndFactories) {
    EXPECT_EQ(S_FALSE, File.Call("DllCanUnloadNow"));
    Factory->LockServer(TRUE);
    IClassFactory* unlocker = Factory.Get();
    Factory.Reset();
    EXPECT_EQ(S_FALSE, File.Call("DllCanUnloadNow"));
    unlocker->LockServer(FALSE);
    EXPECT_EQ(S_OK, File.Call("DllCanUnloadNow"));
}

}  // namespace
}  // namespace corvane::test
