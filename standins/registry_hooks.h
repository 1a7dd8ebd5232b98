// What tests may do with the portable registry beyond its functions. Texts are ANSI.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "platform/registry.h"

namespace corvane::platform {

// Leaves the predefined roots and HKEY_CURRENT_USER\Software, counters at 0 and no interceptor.
void ClearRegistry();

// Called before each registry call but CloseKey, with the number of the call since it was set, from 1. What it returns,
// unless 0, is the call's result, and the call does nothing else. It may change the registry through these hooks and
// through the registry's own functions, which are not intercepted meanwhile. An empty one ends it.
using RegistryInterceptor = std::function<int32_t(int call)>;
void InterceptRegistry(RegistryInterceptor interceptor);

int RegistryCalls();     // since ClearRegistry
int OpenRegistryKeys();  // opened and not closed

// Data exactly as given, zeros in the name included; the key is created when it is missing.
void StoreValue(RegistryKey root, const std::string& path, const std::string& name, uint32_t type,
                const std::string& data);
// A subkey whose name may hold anything.
void StoreSubKey(RegistryKey root, const std::string& path, const std::string& name);
// Opening this key with any of these rights is refused from now on.
void DenyRights(RegistryKey root, const std::string& path, uint32_t rights);

}  // namespace corvane::platform
