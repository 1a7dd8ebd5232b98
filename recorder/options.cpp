#include "recorder/options.h"

#include <fmt/format.h>
#include <CLI/CLI.hpp>
#include <charconv>
#include <cmath>
#include <set>
#include <sstream>
#include <string_view>

#include "recorder/failure.h"

namespace corvane::recorder {
namespace {

constexpr const char* Version = "ltr27rec 3.2.0.1";
constexpr double DurationMax = 10000 * 3600.0;  // s; over a year of recording is a typing mistake

constexpr const char* Footer = R"(Examples:
  ltr27rec list
  ltr27rec record -o run.csv
  ltr27rec record --channels 0-15,17 --rate 500 --duration 2m -o run.csv --plot run.svg
  ltr27rec settings

Exit codes:
  0    done
  1    the command line is wrong, or asks for a window where the driver has none
  2    the driver can't be loaded: not registered, or a library of the LTR software is missing
  3    no crate or no module was found
  4    the recording could not be started
  5    a file could not be written
  6    not every kadr was measured, in order, and written: the end of the CSV file lists
       what was not measured, and every other reason for doubt
  130  ended by Ctrl+C; what was recorded until then is kept)";

template <class... Arguments>
[[noreturn]] void ThrowUsage(fmt::format_string<Arguments...> format, Arguments&&... arguments) {
    throw Failure(ExitCode::Usage, fmt::format(format, std::forward<Arguments>(arguments)...));
}

// The number that starts `text`, which is shortened by it. None when there is none.
template <class Number>
std::optional<Number> TakeNumber(std::string_view& text) {
    Number number{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc()) return std::nullopt;
    text.remove_prefix(static_cast<size_t>(end - text.data()));
    return number;
}

// One "5" or "0-15". False when it is neither.
bool AddChannels(std::string_view item, std::set<int16_t>& channels) {
    const auto first = TakeNumber<int16_t>(item);
    auto last = first;
    if (item.starts_with('-')) {
        item.remove_prefix(1);
        last = TakeNumber<int16_t>(item);
    }
    if (!first || !last || !item.empty() || *first < 0 || *last < *first) return false;
    for (int number = *first; number <= *last; number++) channels.insert(static_cast<int16_t>(number));
    return true;
}

double ParseRate(const std::string& text) {
    std::string_view rest = text;
    const auto rate = TakeNumber<double>(rest);
    if (!rate || !(rest.empty() || rest == "Hz") || !std::isfinite(*rate) || *rate <= 0) {
        ThrowUsage("--rate {}: give a number of Hz above 0, for example 500.", text);
    }
    return *rate;
}

// The texts of one command line, before they are understood.
struct RawOptions {
    std::string Channels = "fitted";
    std::string Rate;
    std::string Duration = "10s";
    std::string StallTimeout = "60s";
};

CLI::App* AddRecord(CLI::App& app, RawOptions& raw, Options& options) {
    CLI::App* record = app.add_subcommand("record", "Record channels to a CSV file");
    record->add_option("-c,--channels", raw.Channels,
                       "Channel numbers, for example 0-15,17 (default: all fitted ones)");
    record->add_option("-r,--rate", raw.Rate, "Kadrs per second, in Hz (default: what the driver is set to)");
    record->add_option("-d,--duration", raw.Duration, "500ms, 10s, 2m, 1.5h or plain seconds (default: 10s)");
    record->add_option("-o,--output", options.OutputPath, "CSV file to write; an existing one is replaced")->required();
    record->add_option("-p,--plot", options.PlotPath, "SVG picture of the recording to write");
    record->add_option("--stall-timeout", raw.StallTimeout,
                       "End the recording when nothing is measured for so long; 0: wait till Ctrl+C (default: 60s)");
    record->add_flag("--keep-filled", options.KeepFilled,
                     "Where nothing was measured, write what the driver filled in, in place of empty cells");
    record->add_flag("-q,--quiet", options.Quiet, "No progress, no summary; warnings and errors only");
    return record;
}

}  // namespace

std::optional<std::vector<int16_t>> ParseChannelList(const std::string& text) {
    if (text == "fitted") return std::nullopt;
    std::set<int16_t> channels;
    for (std::string_view rest = text;;) {
        const size_t comma = rest.find(',');
        const std::string_view item = rest.substr(0, comma);
        if (!AddChannels(item, channels)) {
            ThrowUsage("--channels {}: \"{}\" is no channel number or ascending range. Write it like 0-15,17.", text,
                       item);
        }
        if (comma == std::string_view::npos) return std::vector<int16_t>(channels.begin(), channels.end());
        rest.remove_prefix(comma + 1);
    }
}

double ParseDuration(const std::string& text) {
    static constexpr std::pair<std::string_view, double> Units[] = {{"", 1},   {"ms", 0.001}, {"s", 1},
                                                                    {"m", 60}, {"min", 60},   {"h", 3600}};
    std::string_view unit = text;
    const auto number = TakeNumber<double>(unit);
    for (const auto& [name, seconds] : Units) {
        if (!number || unit != name) continue;
        const double duration = *number * seconds;
        if (duration >= 0 && duration <= DurationMax) return duration;  // false for NaN
        ThrowUsage("{}: a time is between 0 and 10000h.", text);
    }
    ThrowUsage("{}: not understood as a time. Write it like 500ms, 10s, 2m or 1.5h.", text);
}

Options ParseCommandLine(const std::vector<std::string>& arguments) {
    Options options;
    RawOptions raw;
    CLI::App app("Records LTR27 channels through the Corvane driver.", "ltr27rec");
    app.footer(Footer);
    app.set_version_flag("--version", Version);
    app.require_subcommand(1);
    app.add_subcommand("list", "Show the device and its channels");
    const CLI::App* settings = app.add_subcommand("settings", "Open the driver's setup dialog (Windows only)");
    const CLI::App* record = AddRecord(app, raw, options);
    try {
        app.parse(std::vector<std::string>(arguments.rbegin(), arguments.rend()));  // it takes them from the back
    } catch (const CLI::Success& request) {
        std::ostringstream text;
        app.exit(request, text, text);
        options.Text = text.str();
        return options;
    } catch (const CLI::ParseError& error) {
        if (app.get_subcommands().empty()) {
            ThrowUsage("Give a command: ltr27rec list, record or settings. Run ltr27rec --help for help.");
        }
        ThrowUsage("{}\nRun ltr27rec --help for help.", error.what());
    }
    if (!record->parsed()) {
        options.Action = settings->parsed() ? Command::Settings : Command::List;
        return options;
    }
    options.Action = Command::Record;
    options.Channels = ParseChannelList(raw.Channels);
    if (!raw.Rate.empty()) options.Rate = ParseRate(raw.Rate);
    options.Duration = ParseDuration(raw.Duration);
    if (options.Duration <= 0) ThrowUsage("--duration {}: must be above 0.", raw.Duration);
    options.StallTimeout = ParseDuration(raw.StallTimeout);
    if (options.OutputPath == options.PlotPath) {
        ThrowUsage("--output and --plot both name {}: give them different files.", options.OutputPath);
    }
    return options;
}

}  // namespace corvane::recorder
