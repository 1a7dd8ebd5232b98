// The driver's event log of this process, in a file of its own, which goes with this object: only there the driver says
// which servers it has asked. Made before the driver is.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace corvane::recorder {

class OwnEventLog {
public:
    OwnEventLog();
    ~OwnEventLog();
    OwnEventLog(const OwnEventLog&) = delete;
    OwnEventLog& operator=(const OwnEventLog&) = delete;

    // What the driver said of servers, "server ...", and of modules that can't be opened, "slot ...": lines without
    // their time. None: the file can't be read.
    std::vector<std::string> OfSearch() const;

private:
    std::filesystem::path File_;
};

}  // namespace corvane::recorder
