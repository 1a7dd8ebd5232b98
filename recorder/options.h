// The command line.
#pragma once

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace corvane::recorder {

enum class Command { Print, List, Record, Settings };

// Channels of a device that is not known yet.
struct ChannelChoice {
    bool All = false;
    bool Fitted = false;          // all that have a mezzanine
    std::set<int16_t> Numbers{};  // these too

    bool operator==(const ChannelChoice&) const = default;
};

struct Options {
    Command Action = Command::Print;
    std::string Text;  // Print: help or version, for stdout

    // Every command
    std::string Server;    // dotted address; empty: the usual search
    std::string Crate;     // serial number; empty: the only one
    bool Dialogs = false;  // the driver may show windows

    // Record
    ChannelChoice Channels;
    std::optional<double> Rate;  // Hz; none: what the driver has
    double Duration = 0;         // s
    double StallTimeout = 0;     // s; 0: no limit
    std::string OutputPath;      // StandardOutput: that
    std::string PlotPath;        // empty: no plot
    bool KeepFilled = false;     // write what the driver filled in where nothing was measured
    bool Quiet = false;
};

// `arguments` without the program's name. What can't be understood throws Failure with ExitCode::Usage.
Options ParseCommandLine(const std::vector<std::string>& arguments);

// "0-15,17", "fitted", "all" and any of them together. Throws as above.
ChannelChoice ParseChannelList(const std::string& text);

// "500ms", "10s", "2m" or "2min", "1.5h", "1h30m" or plain seconds, to seconds. Throws as above.
double ParseDuration(const std::string& text);

}  // namespace corvane::recorder
