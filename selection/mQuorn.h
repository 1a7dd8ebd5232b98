// Device enumeration: finds the crates that can serve the driver.
#pragma once

#include <cstdint>
#include <string>

#include "selection/crate_list.h"

namespace corvane {

// Searches an LTR server for crates with modules whose type name matches moduleFilter (empty: any module): first the
// server that the search names, then, when that gives none and the user may be asked, one that the user chooses. Fills
// CrateList. Returns the number of crates, or -1 with a message in lastError when the server can't be asked. adcName:
// the device's name, the title of messages to the user.
int16_t FindCrates(CrateSearch& search, const std::string& moduleFilter, const std::string& adcName,
                   std::string& lastError);

// The same for one server. Asks nobody, and leaves the message to FindCrates.
int16_t EnumerateCrates(CrateSearch& search, uint32_t netAddr, const std::string& moduleFilter);

// Dotted text of a server address.
std::string AddressToText(uint32_t netAddr);

// Full path of the vendor's help file beside the component or, where there is none, of the guide's page in the user's
// language, which the installer puts there. helpFile stays as it is when there is neither.
void SetHelpFile(std::string& helpFile);

}  // namespace corvane
