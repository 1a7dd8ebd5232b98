#include "tests/windows/com_host.h"

namespace corvane::test {

std::wstring ComponentPath() {
    wchar_t path[MAX_PATH] = {};
    GetModuleFileNameW(nullptr, path, MAX_PATH);
    std::wstring folder(path);
    folder.resize(folder.rfind(L'\\'));
    if (!folder.ends_with(L"\\stage")) folder = folder.substr(0, folder.rfind(L'\\')) + L"\\stage";
    return folder + L"\\Corvane.adc";
}

LoadedComponent::LoadedComponent()
    : Module_(LoadLibraryExW(ComponentPath().c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH)) {
    EXPECT_NE(nullptr, Module_) << "the component can't be loaded: " << GetLastError();
}

LoadedComponent::~LoadedComponent() {
    if (Module_ != nullptr) FreeLibrary(Module_);
}

FARPROC LoadedComponent::Find(const char* function) const {
    const FARPROC address = Module_ != nullptr ? GetProcAddress(Module_, function) : nullptr;
    EXPECT_NE(nullptr, address) << function;
    return address;
}

HRESULT LoadedComponent::Call(const char* function) const {
    const auto entry = reinterpret_cast<HRESULT(STDAPICALLTYPE*)()>(Find(function));
    return entry != nullptr ? entry() : E_FAIL;
}

HRESULT LoadedComponent::GetClassObject(const GUID& classIdentifier, const GUID& identifier, void** object) const {
    using Entry = HRESULT(STDAPICALLTYPE*)(REFCLSID, REFIID, void**);
    const auto entry = reinterpret_cast<Entry>(reinterpret_cast<void*>(Find("DllGetClassObject")));
    return entry != nullptr ? entry(classIdentifier, identifier, object) : E_FAIL;
}

ComPtr<IADC3> CreateDriver() {
    ComPtr<IADC3> driver;
    CLSID identifier = {};
    if (SUCCEEDED(CLSIDFromProgID(L"Tessmark.Corvane", &identifier))) {
        CoCreateInstance(identifier, nullptr, CLSCTX_INPROC_SERVER, __uuidof(IADC3),
                         reinterpret_cast<void**>(driver.GetAddressOf()));
    }
    return driver;
}

std::wstring LastError(IADC3* driver) {
    BSTR text = Read(driver, &IADC3::get_LastError);
    const std::wstring result(text, SysStringLen(text));
    SysFreeString(text);
    return result;
}

Array MakeShorts(const std::vector<short>& values, LONG lowerBound) {
    SAFEARRAYBOUND bound = {static_cast<ULONG>(values.size()), lowerBound};
    Array array(SafeArrayCreate(VT_I2, 1, &bound));
    std::copy(values.begin(), values.end(), static_cast<short*>(array->pvData));
    return array;
}

void SelectChannels(IADC3* driver, const std::vector<short>& channels) {
    const Array owner = MakeShorts(channels, 0);
    SAFEARRAY* array = owner.get();
    ASSERT_EQ(S_OK, driver->put_InputChannels(&array));
}

std::vector<short> SelectedChannels(IADC3* driver) {
    const Array array(Read(driver, &IADC3::get_InputChannels));
    const short* first = static_cast<const short*>(array->pvData);
    return {first, first + array->rgsabound[0].cElements};
}

}  // namespace corvane::test
