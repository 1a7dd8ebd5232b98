// The class factory of Corvane.
#pragma once

#include <windows.h>

namespace corvane {

// DllGetClassObject for the component's one class.
HRESULT GetClassFactory(REFIID identifier, void** object);

}  // namespace corvane
