// Whose the registration of a type library and of its interfaces is. The host may describe IADC3 itself, before us or
// after us, in any version, language or bitness, or bring a proxy of its own: what it made is never touched.
#pragma once

#include <windows.h>

#include "driver/com/registry_entries.h"

namespace corvane {

// HKEY_CLASSES_ROOT is this key of two roots merged; apart, an entry is removed where it was made.
constexpr wchar_t Classes[] = L"Software\\Classes\\";

// Somebody else has registered the library in any form, or one of its interfaces by other means. An interface that
// leads nowhere is nobody's.
bool IsOfOthers(HKEY root, const TypeLibraryRow& library);

// The file that stands there is the component's own, in whatever folder that was registered.
bool IsOurs(HKEY root, const RegistryEntry& fileEntry);

// Removes what is the component's of it, and the keys that are empty then. The first failure, or ERROR_SUCCESS.
LSTATUS RemoveLibrary(HKEY root, const TypeLibraryRow& library);

}  // namespace corvane
