// Device enumeration: finds the crates that can serve the driver.
#pragma once

#include <cstdint>
#include <string>

#include "selection/crate_list.h"

namespace corvane {

// Searches the LTR server that the search names, and when that gives nothing a server that the user picks, if he may be
// asked, for crates with modules whose type name matches the pattern (empty: any module). Fills CrateList. Number of
// crates, or -1 with a message in lastError when the server can't be asked. adcName: the device's name, as the user
// knows it.
int16_t FindCrates(CrateSearch& search, const std::string& moduleFilter, const std::string& adcName,
                   std::string& lastError);

// The same for one server.
int16_t EnumerateCrates(CrateSearch& search, uint32_t netAddr, const std::string& moduleFilter);

// Dotted text of a server address.
std::string AddressToText(uint32_t netAddr);

// Full path of the vendor's help file beside the component; helpFile stays as it is when there is none.
void SetHelpFile(std::string& helpFile);

}  // namespace corvane
