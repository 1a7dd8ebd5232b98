// The component's registry entries: the programmatic identifier, the class, its surrogate for clients of another
// bitness, the type libraries and their interfaces. They are made for all users, or for the current one where no more
// is allowed. The description of IADC3 is the host's: it is added only where no host has registered it, and what a host
// registers, before or after, is never changed.
#pragma once

#include <string>

namespace corvane {

// `path` is that of the component's file. All throw Failure. A Register that fails leaves everything as it was;
// Unregister removes all that it can before it throws, and what is not there counts as removed.
void Register(const std::wstring& path);
void Unregister(const std::wstring& path);

// The same for the current user only, whatever his rights are.
void RegisterForThisUser(const std::wstring& path);
void UnregisterForThisUser(const std::wstring& path);

}  // namespace corvane
