#include "tests/windows/com_host.h"

#include <tlhelp32.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace corvane::test {

std::wstring ComponentPath() {
    wchar_t path[MAX_PATH] = {};
    GetModuleFileNameW(nullptr, path, MAX_PATH);
    std::wstring folder(path);
    folder.resize(folder.rfind(L'\\'));
    if (!folder.ends_with(L"\\stage")) folder = folder.substr(0, folder.rfind(L'\\')) + L"\\stage";
    return folder + L"\\Corvane.adc";
}

std::string TestData(const char* file) {
    const std::filesystem::path stage = std::filesystem::path(ComponentPath()).parent_path();
    std::ifstream stream(stage.parent_path() / "tests" / file);
    EXPECT_TRUE(stream) << file;
    return {std::istreambuf_iterator<char>(stream), {}};
}

LoadedComponent::LoadedComponent(const std::wstring& path)
    : Module_(LoadLibraryExW(path.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH)) {
    EXPECT_NE(nullptr, Module_) << "the component can't be loaded: " << GetLastError();
}

LoadedComponent::~LoadedComponent() {
    if (Module_ != nullptr) FreeLibrary(Module_);
}

HRESULT LoadedComponent::Call(const char* function) const {
    const auto entry = Find<HRESULT(STDAPICALLTYPE*)()>(function);
    return entry != nullptr ? entry() : E_FAIL;
}

HRESULT LoadedComponent::GetClassObject(const GUID& classIdentifier, const GUID& identifier, void** object) const {
    const auto entry = Find<HRESULT(STDAPICALLTYPE*)(REFCLSID, REFIID, void**)>("DllGetClassObject");
    return entry != nullptr ? entry(classIdentifier, identifier, object) : E_FAIL;
}

DWORD RunProcess(std::wstring command, DWORD timeoutMs, HANDLE output) {
    STARTUPINFOW startup = {};
    startup.cb = sizeof startup;
    startup.dwFlags = output != nullptr ? STARTF_USESTDHANDLES : 0;
    startup.hStdOutput = startup.hStdError = output;
    PROCESS_INFORMATION process = {};
    const BOOL inherit = output != nullptr;
    if (!CreateProcessW(nullptr, command.data(), nullptr, nullptr, inherit, 0, nullptr, nullptr, &startup, &process)) {
        return DidNotEnd;
    }
    DWORD code = DidNotEnd;
    if (WaitForSingleObject(process.hProcess, timeoutMs) == WAIT_OBJECT_0) {
        GetExitCodeProcess(process.hProcess, &code);
    } else {
        TerminateProcess(process.hProcess, DidNotEnd);
    }
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    return code;
}

DWORD OpenHandles() {
    DWORD handles = 0;
    // Newer than the oldest Windows that the headers are set to.
    using CountHandles = BOOL(WINAPI*)(HANDLE, DWORD*);
    const auto countHandles = reinterpret_cast<CountHandles>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"kernel32.dll"), "GetProcessHandleCount")));
    if (countHandles != nullptr) countHandles(GetCurrentProcess(), &handles);
    if (handles != 0) return handles;
    // Wine counts none, but numbers its handles from the lowest free one.
    const HANDLE probe = CreateEventW(nullptr, FALSE, FALSE, nullptr);
    CloseHandle(probe);
    return static_cast<DWORD>(reinterpret_cast<uintptr_t>(probe) / 4);
}

int RunningThreads() {
    int threads = 0;
    const HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0);
    THREADENTRY32 thread = {};
    thread.dwSize = sizeof thread;
    for (BOOL more = Thread32First(snapshot, &thread); more; more = Thread32Next(snapshot, &thread)) {
        threads += thread.th32OwnerProcessID == GetCurrentProcessId();
    }
    CloseHandle(snapshot);
    return threads;
}

ComPtr<IADC3> CreateDriver() {
    ComPtr<IADC3> driver;
    CLSID identifier = {};
    if (SUCCEEDED(CLSIDFromProgID(L"Tessmark.Corvane", &identifier))) {
        CoCreateInstance(identifier, nullptr, CLSCTX_INPROC_SERVER, IID_PPV_ARGS(&driver));
    }
    return driver;
}

std::wstring LastError(IADC3* driver) {
    BSTR text = Read(driver, &IADC3::get_LastError);
    const std::wstring result(text, SysStringLen(text));
    SysFreeString(text);
    return result;
}

HRESULT InvokeByName(IDispatch* object, std::wstring name, WORD flags, std::vector<VARIANT> arguments,
                     VARIANT* result) {
    LPOLESTR names = name.data();
    DISPID id = 0, put = DISPID_PROPERTYPUT;
    const HRESULT known = object->GetIDsOfNames(IID_NULL, &names, 1, LOCALE_USER_DEFAULT, &id);
    if (FAILED(known)) return known;
    std::reverse(arguments.begin(), arguments.end());
    DISPPARAMS parameters = {arguments.data(), &put, static_cast<UINT>(arguments.size()),
                             flags == DISPATCH_PROPERTYPUT ? 1u : 0u};
    UINT argument = 0;
    return object->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, flags, &parameters, result, nullptr, &argument);
}

Array MakeShorts(const std::vector<short>& values, LONG lowerBound) {
    SAFEARRAYBOUND bound = {static_cast<ULONG>(values.size()), lowerBound};
    Array array(SafeArrayCreate(VT_I2, 1, &bound));
    std::copy(values.begin(), values.end(), static_cast<short*>(array->pvData));
    return array;
}

std::vector<double> GapNumbers(SAFEARRAY* gaps) {
    VARTYPE type = VT_EMPTY;
    if (gaps == nullptr || SafeArrayGetDim(gaps) != 2 || FAILED(SafeArrayGetVartype(gaps, &type))) return {-1};
    const SAFEARRAYBOUND count = gaps->rgsabound[0], four = gaps->rgsabound[1];  // the last dimension comes first
    if (type != VT_R8 || four.cElements != 4 || four.lLbound != 0 || count.lLbound != 0) return {-2};
    const double* first = static_cast<const double*>(gaps->pvData);
    return {first, first + size_t{4} * count.cElements};
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
