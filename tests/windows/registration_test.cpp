// The component as the platform sees it: its file, its registry entries, its class and its coming and going. This
// executable lies in another folder than the component.
#include <olectl.h>

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

std::wstring ClassValue(const std::wstring& path) {
    wchar_t value[MAX_PATH] = {};
    LONG bytes = sizeof value;
    RegQueryValueW(HKEY_CLASSES_ROOT, path.c_str(), value, &bytes);
    return value;
}

TEST_F(Registration, LeadsFromEitherIdentifierToTheObject) {
    EXPECT_NE(nullptr, CreateDriver());
    EXPECT_TRUE(ClassKnown());
    EXPECT_EQ(ComponentPath(), ClassValue(L"CLSID\\{8C86D41E-5B13-49E0-ABA4-123E7066E30C}\\InprocServer32"));
    EXPECT_EQ(L"Tessmark.Corvane", ClassValue(L"CLSID\\{8C86D41E-5B13-49E0-ABA4-123E7066E30C}\\ProgID"));
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

TEST(Component, CarriesVersionAndTypeLibraries) {
    std::vector<BYTE> record(GetFileVersionInfoSizeW(ComponentPath().c_str(), nullptr));
    ASSERT_TRUE(GetFileVersionInfoW(ComponentPath().c_str(), 0, static_cast<DWORD>(record.size()), record.data()));
    void* value = nullptr;
    UINT size = 0;
    ASSERT_TRUE(VerQueryValueW(record.data(), L"\\", &value, &size));
    EXPECT_EQ(0x00030002u, static_cast<VS_FIXEDFILEINFO*>(value)->dwFileVersionMS);
    EXPECT_EQ(0x00000001u, static_cast<VS_FIXEDFILEINFO*>(value)->dwFileVersionLS);
    ASSERT_TRUE(VerQueryValueW(record.data(), L"\\StringFileInfo\\040904B0\\FileVersion", &value, &size));
    EXPECT_STREQ(L"3.02.0001", static_cast<wchar_t*>(value));
    EXPECT_TRUE(VerQueryValueW(record.data(), L"\\StringFileInfo\\040904B0\\OLESelfRegister", &value, &size));

    ComPtr<ITypeLib> library;
    ASSERT_EQ(S_OK, LoadTypeLibEx(ComponentPath().c_str(), REGKIND_NONE, library.GetAddressOf()));
    ComPtr<ITypeInfo> earlier;
    EXPECT_EQ(S_OK, library->GetTypeInfoOfGuid(EarlierCorvane, earlier.GetAddressOf()));
    ComPtr<ITypeInfo> own;
    ASSERT_EQ(S_OK, library->GetTypeInfoOfGuid(__uuidof(_Corvane), own.GetAddressOf()));
    TYPEATTR* attributes = nullptr;
    ASSERT_EQ(S_OK, own->GetTypeAttr(&attributes));
    const WORD expected = TYPEFLAG_FHIDDEN | TYPEFLAG_FDUAL | TYPEFLAG_FNONEXTENSIBLE;
    EXPECT_EQ(expected, attributes->wTypeFlags & expected);
    own->ReleaseTypeAttr(attributes);
}

// Text `number` of the component in one language; a resource block holds 16 texts, each after its length.
std::wstring TextResource(HMODULE module, WORD language, int number) {
    const HRSRC found = FindResourceExW(module, RT_STRING, MAKEINTRESOURCEW(number / 16 + 1), language);
    if (found == nullptr) return L"no such block";
    const wchar_t* text = static_cast<const wchar_t*>(LockResource(LoadResource(module, found)));
    for (int i = 0; i < number % 16; i++) text += 1 + *text;
    return {text + 1, *text};
}

TEST(Component, CarriesTextsInBothLanguages) {
    const LoadedComponent component;
    const HMODULE module = GetModuleHandleW(L"Corvane.adc");
    EXPECT_EQ(L"Select IP Address", TextResource(module, 0x409, 150));
    EXPECT_EQ(L"\u0412\u044B\u0431\u043E\u0440 IP \u0430\u0434\u0440\u0435\u0441\u0430",
              TextResource(module, 0x419, 150));
    EXPECT_EQ(L"&Mezzanines:", TextResource(module, 0x409, 2700));
}

TEST(Component, CarriesIconsInBothSizes) {
    const LoadedComponent component;
    const HMODULE module = GetModuleHandleW(L"Corvane.adc");
    for (const wchar_t* name :
         std::initializer_list<const wchar_t*>{MAKEINTRESOURCEW(1), L"ADC", MAKEINTRESOURCEW(2), MAKEINTRESOURCEW(3)}) {
        const HRSRC found = FindResourceW(module, name, RT_GROUP_ICON);
        ASSERT_NE(nullptr, found);
        const BYTE* group = static_cast<const BYTE*>(LockResource(LoadResource(module, found)));
        ASSERT_EQ(2, group[4]) << "images";
        EXPECT_EQ(32, group[6]);
        EXPECT_EQ(16, group[6 + 14]);
        EXPECT_EQ(4, group[6 + 6]) << "bits a pixel";
        const HANDLE icon = LoadImageW(module, name, IMAGE_ICON, 16, 16, 0);
        EXPECT_NE(nullptr, icon);
        DestroyIcon(static_cast<HICON>(icon));
    }
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
