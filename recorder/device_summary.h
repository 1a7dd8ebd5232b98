// Where data comes from, in lines for the user: the list, the head of a CSV file and a plot all say the same.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "recorder/channel.h"
#include "recorder/host_device.h"
#include "recorder/messages.h"

namespace corvane::recorder {

// Of a module, as the driver describes it. Empty: unknown, here and below.
struct ModuleSummary {
    std::string Name;
    std::string Slot;
    std::string Serial;
    std::string Firmware;
};

struct DeviceSummary {
    std::string Name;
    std::string Server;
    std::string CrateName;
    std::string CrateSerial;
    std::string CratePort;
    std::vector<ModuleSummary> Modules;
    std::string StartMark;           // the mode, in words
    std::vector<Library> Libraries;  // the driver, then the vendor's

    bool Simulated() const;
    // Its name, with SIMULATED where the vendor libraries are no real ones.
    std::string Device(Language language) const;
    // Server, crate, modules, START mark, driver and libraries, "What: ...".
    std::vector<std::string> Lines(Language language) const;
    std::vector<std::string> ModuleLines(Language language) const;
};

// Its name, version and file, and whether it is a simulated one.
std::string LibraryText(Language language, const Library& library);

// Of an opened device.
DeviceSummary SummaryOf(const HostDevice& device);

// What is wrong with the units of these channels, and how to mend it; empty: nothing.
std::string UnitsAdvice(Language language, std::span<const Channel> channels);

}  // namespace corvane::recorder
