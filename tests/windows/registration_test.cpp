// The component as the platform sees it: its file, its registry entries, its class and its coming and going. This
// executable lies in another folder than the component.
#include <olectl.h>

#include <thread>

#include "tests/windows/com_host.h"

namespace corvane::test {
namespace {

constexpr GUID EarlierCorvane = {0xFAC99029, 0x3AFF, 0x4FAD, {0xA8, 0x3E, 0xC4, 0x16, 0xF4, 0x0B, 0x48, 0xB6}};
constexpr GUID TessmarkLibrary = {0xB4598549, 0xF4AF, 0x4583, {0x85, 0x3E, 0xDC, 0xB9, 0x1F, 0xC0, 0xCD, 0xFD}};

class Registration : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_EQ(S_OK, LoadedComponent().Call("DllRegisterServer")); }
    void TearDown() override { EXPECT_EQ(S_OK, LoadedComponent().Call("DllUnregisterServer")); }

    Apartment Apartment_;
};

ComPtr<IUnknown> Query(IUnknown* object, const GUID& identifier) {
    ComPtr<IUnknown> result;
    EXPECT_EQ(S_OK, object->QueryInterface(identifier, reinterpret_cast<void**>(result.GetAddressOf())));
    return result;
}

bool ClassKnown() {
    ComPtr<IUnknown> object;
    return SUCCEEDED(CoCreateInstance(__uuidof(::Corvane), nullptr, CLSCTX_INPROC_SERVER, __uuidof(IUnknown),
                                      reinterpret_cast<void**>(object.GetAddressOf())));
}

TEST_F(Registration, LeadsFromEitherIdentifierToTheObject) {
    EXPECT_NE(nullptr, CreateDriver());
    EXPECT_TRUE(ClassKnown());
    ComPtr<ITypeLib> library;
    EXPECT_EQ(S_OK, LoadRegTypeLib(TessmarkLibrary, 1, 1, 0x409, library.GetAddressOf()));
}

TEST_F(Registration, ObjectObeysTheRulesOfIdentity) {
    const ComPtr<IADC3> driver = CreateDriver();
    ASSERT_NE(nullptr, driver);
    const ComPtr<IUnknown> identity = Query(driver.Get(), __uuidof(IUnknown));
    const ComPtr<IUnknown> own = Query(driver.Get(), __uuidof(_Corvane));
    EXPECT_EQ(own, Query(driver.Get(), EarlierCorvane));
    EXPECT_EQ(own, Query(driver.Get(), __uuidof(IDispatch)));
    for (const GUID& identifier : {__uuidof(IUnknown), __uuidof(IDispatch), __uuidof(_Corvane), EarlierCorvane,
                                   __uuidof(IADC3), __uuidof(IProvideClassInfo)}) {
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

VARIANT InvokeByName(IDispatch* object, const wchar_t* name, WORD flags, DISPID expected) {
    std::wstring text = name;
    LPOLESTR names = text.data();
    DISPID id = 0;
    EXPECT_EQ(S_OK, object->GetIDsOfNames(IID_NULL, &names, 1, LOCALE_USER_DEFAULT, &id));
    EXPECT_EQ(expected, id);
    DISPPARAMS none = {};
    VARIANT result = {};
    EXPECT_EQ(S_OK, object->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, flags, &none, &result, nullptr, nullptr));
    return result;
}

// Nothing is registered here: the descriptions come out of the component's file.
TEST(Component, AnswersByNameWithoutRegistration) {
    const Apartment apartment;
    const LoadedComponent component;
    ComPtr<IClassFactory> factory;
    ASSERT_EQ(S_OK, component.GetClassObject(__uuidof(::Corvane), __uuidof(IClassFactory),
                                             reinterpret_cast<void**>(factory.GetAddressOf())));
    ComPtr<_Corvane> object;
    ASSERT_EQ(S_OK,
              factory->CreateInstance(nullptr, __uuidof(_Corvane), reinterpret_cast<void**>(object.GetAddressOf())));
    ComPtr<IUnknown> direct;
    ASSERT_EQ(S_OK, object->GetADC3(direct.GetAddressOf()));

    VARIANT result = InvokeByName(object.Get(), L"GetADC3", DISPATCH_METHOD, 0x60030031);
    ASSERT_EQ(VT_UNKNOWN, result.vt);
    EXPECT_EQ(direct.Get(), result.punkVal);
    VariantClear(&result);

    ComPtr<IADC3> driver;
    ASSERT_EQ(S_OK, direct.As(&driver));
    result = InvokeByName(driver.Get(), L"adcname", DISPATCH_PROPERTYGET, 1);
    ASSERT_EQ(VT_BSTR, result.vt);
    EXPECT_STREQ(L"LTR27", result.bstrVal);
    VariantClear(&result);
}

TEST(Component, RefusesWhatItsFactoryCantMake) {
    const Apartment apartment;
    const LoadedComponent component;
    ComPtr<IClassFactory> factory;
    EXPECT_EQ(CLASS_E_CLASSNOTAVAILABLE, component.GetClassObject(__uuidof(IADC3), __uuidof(IClassFactory),
                                                                  reinterpret_cast<void**>(factory.GetAddressOf())));
    ASSERT_EQ(S_OK, component.GetClassObject(__uuidof(::Corvane), __uuidof(IClassFactory),
                                             reinterpret_cast<void**>(factory.GetAddressOf())));
    void* object = &object;
    EXPECT_EQ(CLASS_E_NOAGGREGATION, factory->CreateInstance(factory.Get(), __uuidof(IUnknown), &object));
    EXPECT_EQ(nullptr, object);
    object = &object;
    EXPECT_EQ(E_NOINTERFACE, factory->CreateInstance(nullptr, __uuidof(IClassFactory), &object));
    EXPECT_EQ(nullptr, object);
}

bool Loaded() {
    return GetModuleHandleW(L"Corvane.adc") != nullptr;
}

// Place of a fresh handle in the process's table: it moves up for each handle that was left open before.
uintptr_t FreshHandle() {
    const HANDLE probe = CreateEventW(nullptr, FALSE, FALSE, nullptr);
    CloseHandle(probe);
    return reinterpret_cast<uintptr_t>(probe) / 4;
}

TEST_F(Registration, LibraryLeavesWhenNothingUsesItAndComesAgain) {
    // The vendor libraries stay, so that only the component's own leavings are seen.
    const std::wstring folder = ComponentPath().substr(0, ComponentPath().rfind(L'\\') + 1);
    const HMODULE vendor = LoadLibraryExW((folder + L"ltr27api.dll").c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
    uintptr_t handles = 0;
    for (int round = 0; round < 40; round++) {
        ComPtr<IADC3> driver = CreateDriver();
        ASSERT_NE(nullptr, driver);
        CoFreeUnusedLibrariesEx(0, 0);
        ASSERT_TRUE(Loaded()) << "an object still lives";
        SAFEARRAY* none = nullptr;
        EXPECT_EQ(E_INVALIDARG, driver->put_InputChannels(&none)) << "an exception inside takes resources too";
        driver.Reset();
        ASSERT_TRUE(WaitFor([] { return CoFreeUnusedLibrariesEx(0, 0), !Loaded(); }, 2000)) << "round " << round;
        if (round == 0) handles = FreshHandle();
    }
    EXPECT_LE(FreshHandle(), handles + 4);
    FreeLibrary(vendor);
}

// Says what went wrong in one host thread that makes, uses and drops objects, one after the other.
std::string UseObjects(float rate) {
    const Apartment apartment;
    for (int round = 0; round < 200; round++) {
        const ComPtr<IADC3> driver = CreateDriver();
        if (!driver) return "no object";
        driver->put_Rate(rate);
        Sleep(1);  // the others' turn; all wake up at once
        BSTR name = Read(driver.Get(), &IADC3::get_ADCName);
        const bool right = name != nullptr && std::wstring(name) == L"LTR27";
        SysFreeString(name);
        if (!right) return "no name";
        if (Read(driver.Get(), &IADC3::get_Rate) != rate) return "another thread's rate";
    }
    return "";
}

TEST_F(Registration, ObjectsOfManyThreadsKeepApartAndLeave) {
    constexpr float rates[] = {10, 100, 500, 1000};
    std::string faults[4];
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; i++) threads.emplace_back([&, i] { faults[i] = UseObjects(rates[i]); });
    for (std::thread& thread : threads) thread.join();
    for (const std::string& fault : faults) EXPECT_EQ("", fault);
    EXPECT_TRUE(WaitFor([] { return CoFreeUnusedLibrariesEx(0, 0), !Loaded(); }, 2000)) << "something still uses it";
}

TEST(Component, LocksAndFactoriesKeepIt) {
    const Apartment apartment;
    const LoadedComponent component;
    ComPtr<IClassFactory> factory;
    EXPECT_EQ(S_OK, component.Call("DllCanUnloadNow"));
    ASSERT_EQ(S_OK, component.GetClassObject(__uuidof(::Corvane), __uuidof(IClassFactory),
                                             reinterpret_cast<void**>(factory.GetAddressOf())));
    EXPECT_EQ(S_FALSE, component.Call("DllCanUnloadNow"));
    factory->LockServer(TRUE);
    IClassFactory* unlocker = factory.Get();
    factory.Reset();
    EXPECT_EQ(S_FALSE, component.Call("DllCanUnloadNow"));
    unlocker->LockServer(FALSE);
    EXPECT_EQ(S_OK, component.Call("DllCanUnloadNow"));
}

}  // namespace
}  // namespace corvane::test
