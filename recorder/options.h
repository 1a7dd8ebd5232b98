// The command line.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace corvane::recorder {

enum class Command { Print, List, Record, Settings };

struct Options {
    Command Action = Command::Print;
    std::string Text;  // Print: help or version, for stdout

    // Record
    std::optional<std::vector<int16_t>> Channels;  // ascending, each once; none: all fitted ones
    std::optional<double> Rate;                    // Hz; none: what the driver has
    double Duration = 0;                           // s
    double StallTimeout = 0;                       // s; 0: no limit
    std::string OutputPath;
    std::string PlotPath;     // empty: no plot
    bool KeepFilled = false;  // write what the driver filled in where nothing was measured
    bool Quiet = false;
};

// `arguments` without the program's name. What can't be understood throws Failure with ExitCode::Usage.
Options ParseCommandLine(const std::vector<std::string>& arguments);

// "0-15,17" to ascending channel numbers, "fitted" to none. Throws as above.
std::optional<std::vector<int16_t>> ParseChannelList(const std::string& text);

// "500ms", "10s", "2m" or "2min", "1.5h" or plain seconds, to seconds. Throws as above.
double ParseDuration(const std::string& text);

}  // namespace corvane::recorder
