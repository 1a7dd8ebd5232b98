#include "recorder/options.h"

#include <corvane_version.h>
#include <fmt/format.h>
#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <set>
#include <sstream>
#include <string_view>

#include "recorder/failure.h"
#include "recorder/output_file.h"

namespace corvane::recorder {
namespace {

constexpr const char* Version = "ltr27rec " CORVANE_VERSION;
constexpr double DurationMax = 10000 * 3600.0;  // s; over a year of recording is a typing mistake

constexpr const char* Footer = R"(Examples:
  ltr27rec list
  ltr27rec record -o run.csv
  ltr27rec record --channels 0-15,17 --rate 500 --duration 2m -o run.csv --plot run.svg
  ltr27rec record --crate 3T123456 -c all -d 1h30m -o - | gzip > run.csv.gz
  ltr27rec settings

Exit codes:
  0    done
  1    the command line is wrong, or asks for a window where the driver has none
  2    the driver can't be loaded: not registered, or a library of the LTR software is missing
  3    no crate or no module was found, or several crates and --crate names none of them
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

bool IsHz(std::string_view unit) {
    return unit.size() == 2 && (unit[0] == 'H' || unit[0] == 'h') && (unit[1] == 'z' || unit[1] == 'Z');
}

double ParseRate(const std::string& text) {
    std::string_view rest = text;
    const auto rate = TakeNumber<double>(rest);
    if (!rate || !(rest.empty() || IsHz(rest)) || !std::isfinite(*rate) || *rate <= 0) {
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

void AddDeviceChoice(CLI::App* command, Options& options) {
    command->add_option("--server", options.Server, "Address of the LTR server (default: this machine's)");
    command->add_option("--crate", options.Crate, "Serial number of the crate, where the server has several");
    command->add_flag("--dialogs", options.Dialogs, "Let the driver ask in windows of its own (Windows only)");
}

CLI::App* AddRecord(CLI::App& app, RawOptions& raw, Options& options) {
    CLI::App* record = app.add_subcommand("record", "Record channels to a CSV file");
    record
        ->add_option("-c,--channels", raw.Channels,
                     "Channels: 0-15,17 or fitted or all; given again, it adds to them (default: fitted)")
        ->multi_option_policy(CLI::MultiOptionPolicy::Join);
    record->add_option("-r,--rate", raw.Rate, "Kadrs per second, in Hz (default: what the driver is set to)");
    record->add_option("-d,--duration", raw.Duration, "500ms, 10s, 2m, 1h30m or plain seconds (default: 10s)");
    record
        ->add_option("-o,--output", options.OutputPath,
                     "CSV file to write; it replaces an existing one when it is complete. -: standard output")
        ->required();
    record->add_option("-p,--plot", options.PlotPath, "SVG picture of the recording to write");
    record->add_option("--stall-timeout", raw.StallTimeout,
                       "End the recording when nothing is measured for so long; 0: wait till Ctrl+C (default: 60s)");
    record->add_flag("--keep-filled", options.KeepFilled,
                     "Where nothing was measured, write what the driver filled in, in place of empty cells");
    record->add_flag("-q,--quiet", options.Quiet, "No progress, no summary; warnings and errors only");
    return record;
}

}  // namespace

ChannelChoice ParseChannelList(const std::string& text) {
    ChannelChoice choice;
    for (std::string_view rest = text;;) {
        const size_t comma = rest.find(',');
        const std::string_view item = rest.substr(0, comma);
        if (item == "all") {
            choice.All = true;
        } else if (item == "fitted") {
            choice.Fitted = true;
        } else if (!AddChannels(item, choice.Numbers)) {
            ThrowUsage(
                "--channels {}: \"{}\" is no channel number or ascending range. Write it like 0-15,17 or fitted or "
                "all.",
                text, item);
        }
        if (comma == std::string_view::npos) return choice;
        rest.remove_prefix(comma + 1);
    }
}

double ParseDuration(const std::string& text) {
    // A longer name before one that it starts with.
    static constexpr std::pair<std::string_view, double> Units[] = {
        {"ms", 0.001}, {"min", 60}, {"h", 3600}, {"m", 60}, {"s", 1}};
    double duration = 0;
    std::string_view rest = text;
    do {
        const bool first = rest.size() == text.size();
        const auto number = TakeNumber<double>(rest);
        const auto* unit = std::ranges::find_if(Units, [&](const auto& each) { return rest.starts_with(each.first); });
        const bool seconds = first && rest.empty();
        if (!number || !(*number >= 0) || (unit == std::end(Units) && !seconds)) {
            ThrowUsage("{}: not understood as a time. Write it like 500ms, 10s, 2m, 1.5h or 1h30m.", text);
        }
        duration += *number * (seconds ? 1 : unit->second);
        if (!seconds) rest.remove_prefix(unit->first.size());
    } while (!rest.empty());
    if (duration <= DurationMax) return duration;
    ThrowUsage("{}: a time is between 0 and 10000h.", text);
}

Options ParseCommandLine(const std::vector<std::string>& arguments) {
    Options options;
    RawOptions raw;
    CLI::App app("Records LTR27 channels through the Corvane driver.", "ltr27rec");
    app.footer(Footer);
    app.set_version_flag("--version", Version);
    app.require_subcommand(1);
    CLI::App* list = app.add_subcommand("list", "Show the device and its channels");
    CLI::App* settings = app.add_subcommand("settings", "Open the driver's setup dialog (Windows only)");
    CLI::App* record = AddRecord(app, raw, options);
    const std::array commands = {list, settings, record};
    for (CLI::App* command : commands) AddDeviceChoice(command, options);
    if (!arguments.empty() && !arguments.front().starts_with('-') &&
        std::ranges::none_of(commands, [&](const CLI::App* each) { return each->get_name() == arguments.front(); })) {
        ThrowUsage("There is no command \"{}\": ltr27rec has list, record and settings. Run ltr27rec --help for help.",
                   arguments.front());
    }
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
    std::ranges::replace(raw.Channels, '\n', ',');  // between the values of several -c
    options.Channels = ParseChannelList(raw.Channels);
    if (!raw.Rate.empty()) options.Rate = ParseRate(raw.Rate);
    options.Duration = ParseDuration(raw.Duration);
    if (options.Duration <= 0) ThrowUsage("--duration {}: must be above 0.", raw.Duration);
    options.StallTimeout = ParseDuration(raw.StallTimeout);
    if (options.PlotPath == StandardOutput) ThrowUsage("--plot needs a file: only the CSV can go to standard output.");
    return options;
}

}  // namespace corvane::recorder
