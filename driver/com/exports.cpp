// The component's exported functions.
#include <windows.h>

#include <olectl.h>
#include <shlwapi.h>

#include "driver/com/class_factory.h"
#include "driver/com/guard.h"
#include "driver/com/identifiers.h"
#include "driver/com/library_use.h"
#include "driver/com/registration.h"
#include "platform/win32/component_module.h"

using namespace corvane;

STDAPI DllCanUnloadNow() {
    return LibraryInUse() ? S_FALSE : S_OK;
}

STDAPI DllGetClassObject(REFCLSID classIdentifier, REFIID identifier, void** object) {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    if (classIdentifier != __uuidof(::Corvane)) return CLASS_E_CLASSNOTAVAILABLE;
    return GetClassFactory(identifier, object);
}

STDAPI DllRegisterServer() {
    return Guard([] { Register(platform::ComponentPath()); });
}

STDAPI DllUnregisterServer() {
    return Guard([] { Unregister(platform::ComponentPath()); });
}

// As `regsvr32 /n /i:user` calls it: registers or unregisters for the current user only.
STDAPI DllInstall(BOOL install, LPCWSTR what) {
    if (what == nullptr || StrCmpIW(what, L"user") != 0) return E_INVALIDARG;
    return Guard([&] { (install ? RegisterForThisUser : UnregisterForThisUser)(platform::ComponentPath()); });
}
