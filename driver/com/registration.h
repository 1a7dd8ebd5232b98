// The component's registry entries: the programmatic identifier, the class, the type library and its two interfaces.
// The host's IADC3 entry belongs to the host and is never touched.
#pragma once

namespace corvane {

// Both throw Failure. Register leaves nothing behind when it fails; Unregister removes what it can first, and what is
// not there counts as removed.
void Register();
void Unregister();

}  // namespace corvane
