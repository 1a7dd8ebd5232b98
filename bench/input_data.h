// What reading everything at once through InputData costs a host.
#pragma once

namespace corvane::bench {

// Median time of InputData with 32 channels x 32768 unread kadrs, divided by that of malloc and memcpy of as much. The
// simulated crate must deliver as fast as it can.
double InputDataRatio();

}  // namespace corvane::bench
