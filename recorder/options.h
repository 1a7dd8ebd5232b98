// The command line.
#pragma once

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "recorder/csv_writer.h"

namespace corvane::recorder {

enum class Command { Print, List, Monitor, Record, Convert, Report, Settings, Driver, Doctor };

enum class DriverAction { Show, Real, Simulator, Unregister, Libraries, CopyLibraries, Programs };

// Channels of a device that is not known yet.
struct ChannelChoice {
    bool All = false;
    bool Fitted = false;          // all that have a mezzanine
    std::set<int16_t> Numbers{};  // these too

    bool operator==(const ChannelChoice&) const = default;
};

// Where a recording is split into files: after so long, or before a file grows larger.
struct SplitChoice {
    double Seconds = 0;
    int64_t Bytes = 0;  // 0: after so long

    bool operator==(const SplitChoice&) const = default;
};

// What a recording is written as.
enum class FileFormat { Csv, Npy, Influx };

// What stands for a group of kadrs.
enum class Thinning { First, Means, MinMax };

constexpr int64_t UntilInterrupted = INT64_MAX;  // as a number of kadrs

struct Options {
    Command Action = Command::Print;
    std::string Text;  // Print: help or version, for stdout

    // Every command
    std::string Server;    // dotted address; empty: the usual search
    std::string Crate;     // serial number; empty: the only one
    bool Dialogs = false;  // the driver may show windows

    // Record and Monitor
    ChannelChoice Channels;
    std::optional<double> Rate;  // Hz; none: what the driver has
    double StallTimeout = 0;     // s; 0: no limit

    // Monitor and Doctor
    bool Once = false;
    bool Json = false;

    // Record
    int64_t Kadrs = 0;               // so many, or UntilInterrupted
    std::optional<double> Duration;  // s; in place of Kadrs
    std::optional<SplitChoice> Split;
    std::string PlotPath;  // empty: no plot
    FileFormat Format = FileFormat::Csv;

    // Record and Convert
    std::string OutputPath;   // StandardOutput: that
    CsvStyle Csv;             // of CSV text
    bool KeepFilled = false;  // write what the driver filled in where nothing was measured
    bool Quiet = false;

    // Convert and Report
    std::string InputPath;

    // Convert
    double From = 0;           // s, of the first kadr
    std::optional<double> To;  // s, behind the last kadr; none: all
    int64_t Every = 1;         // kadrs that become one row
    Thinning ThinBy = Thinning::First;

    // Driver
    DriverAction Driver = DriverAction::Show;
    bool ThisUser = false;     // registers for this user only
    std::string DriverFolder;  // where the driver lies; empty: beside this program
};

// `arguments` without the program's name. Chooses the language of all that is said, where they name one. What can't be
// understood throws Failure with ExitCode::Usage.
Options ParseCommandLine(std::vector<std::string> arguments);

// "0-15,17", "fitted", "all" and any of them together. Throws as above.
ChannelChoice ParseChannelList(const std::string& text);

// "500ms", "10s", "2m" or "2min", "1.5h", "1h30m" or plain seconds, to seconds. Throws as above.
double ParseDuration(const std::string& text);

// A time as above, or "500MB", "1GB". Throws as above.
SplitChoice ParseSplit(const std::string& text);

}  // namespace corvane::recorder
