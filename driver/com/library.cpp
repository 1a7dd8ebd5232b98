// The component's exported functions.
#include "driver/com/library.h"

#include <olectl.h>

#include "driver/com/class_factory.h"
#include "driver/com/guard.h"
#include "driver/com/identifiers.h"
#include "driver/com/registration.h"

extern "C" IMAGE_DOS_HEADER __ImageBase;  // the linker's name for where this library was loaded

namespace corvane {

namespace {

LONG Uses = 0;

}  // namespace

void KeepLibrary() {
    InterlockedIncrement(&Uses);
}
void LetLibraryGo() {
    InterlockedDecrement(&Uses);
}

std::wstring ModulePath() {
    std::wstring path(MAX_PATH, L'\0');
    for (;;) {
        const DWORD length =
            GetModuleFileNameW(reinterpret_cast<HMODULE>(&__ImageBase), path.data(), static_cast<DWORD>(path.size()));
        if (length == 0) throw Failure{HRESULT_FROM_WIN32(GetLastError())};
        if (length < path.size()) return path.substr(0, length);
        path.resize(path.size() * 2);  // paths end at 32767 characters
    }
}

}  // namespace corvane

using namespace corvane;

STDAPI DllCanUnloadNow() {
    return InterlockedCompareExchange(&Uses, 0, 0) == 0 ? S_OK : S_FALSE;
}

STDAPI DllGetClassObject(REFCLSID classIdentifier, REFIID identifier, void** object) {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    if (classIdentifier != __uuidof(::Corvane)) return CLASS_E_CLASSNOTAVAILABLE;
    return GetClassFactory(identifier, object);
}

STDAPI DllRegisterServer() {
    return Guard([] { Register(); });
}

STDAPI DllUnregisterServer() {
    return Guard([] { Unregister(); });
}
