// Device enumeration: finds the crates that can serve the driver.
#pragma once

#include <cstdint>
#include <string>

#include "driver/model/driver_state.h"

namespace corvane {

// Searches the LTR server of this machine, and when that gives nothing a server that the user picks, for crates with
// modules whose type name matches the pattern (empty: any module). Fills CrateList. Number of crates, or -1 with a
// message in LastError when the server can't be asked.
int16_t FindCrates(DriverState& state, const std::string& moduleFilter);

// The same for one server; LastError stays.
int16_t EnumerateCrates(DriverState& state, uint32_t netAddr, const std::string& moduleFilter);

// Dotted text of a server address.
std::string AddressToText(uint32_t netAddr);

// Points the driver at the vendor's help file beside the component, when there is one.
void SetHelpFile(DriverState& state);

}  // namespace corvane
