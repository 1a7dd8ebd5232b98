// Tells who has registered a type library and its interfaces. The host may describe IADC3 itself, before us or after
// us, in any version, language or bitness, or bring a proxy of its own: what it registered is never touched.
#pragma once

#include <windows.h>

#include "driver/com/registry_entries.h"

namespace corvane {

// Below HKEY_LOCAL_MACHINE or HKEY_CURRENT_USER. HKEY_CLASSES_ROOT shows the two keys merged; here they are kept apart,
// so that an entry is removed where it was made.
constexpr wchar_t Classes[] = L"Software\\Classes\\";

// True when somebody else has registered the library in any form, or one of its interfaces in another way. An interface
// whose library is not registered is nobody's.
bool IsOfOthers(HKEY root, const TypeLibraryRow& library, const std::wstring& path);

// True when the entry names the component's own file, in any folder. `path` is that of the component's file, here and
// below.
bool IsOurs(HKEY root, const RegistryEntry& fileEntry, const std::wstring& path);

// Removes what the component has registered of the library, and the keys that are empty then. The first failure, or
// ERROR_SUCCESS.
LSTATUS RemoveLibrary(HKEY root, const TypeLibraryRow& library, const std::wstring& path);

}  // namespace corvane
