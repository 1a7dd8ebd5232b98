// Which driver this machine's hosts load, and making it another.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace corvane::recorder {

// An entry of the registry that leads hosts to a file.
struct RegisteredDriver {
    std::filesystem::path File;
    bool OneUser = false;  // for this user only; it comes before one for all users, except for a host with
                           // administrator's rights, which doesn't see it
    bool Hosts64 = false;  // among the entries for 64-bit hosts, which can't load a 32-bit driver
};

// In the order in which a 32-bit host of this user takes them.
std::vector<RegisteredDriver> RegisteredDrivers();

// Loads the file and lets it register itself, for all users where that is allowed and `thisUser` is false. Returns
// whether it is registered for all users. Throws Failure with ExitCode::NoDriver and what to do.
bool RegisterDriver(const std::filesystem::path& component, bool thisUser);

// Removes the driver's entries, whichever file they name, or those for this user only; the file need not be there.
// Throws as above.
void UnregisterDriver(const std::filesystem::path& component, bool thisUser);

// A program that has a file of this folder loaded as a library.
struct LoadedBy {
    std::string Program;
    uint32_t Process = 0;  // its number
};
std::vector<LoadedBy> ProgramsUsing(const std::filesystem::path& folder);

}  // namespace corvane::recorder
