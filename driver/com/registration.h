// The component's registry entries: the programmatic identifier, the class, its surrogate for clients of another
// bitness, the type libraries and their interfaces. They are made for all users, or for this one where only that is
// allowed. The description of the host's IADC3 is added where no host has registered it, and what a host has made of it
// at any time stays.
#pragma once

namespace corvane {

// Both throw Failure. A Register that fails leaves everything as it was; Unregister removes what it can first, and what
// is not there counts as removed.
void Register();
void Unregister();

}  // namespace corvane
