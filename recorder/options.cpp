#include "recorder/options.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <cmath>
#include <set>
#include <sstream>
#include <string_view>

#include "recorder/failure.h"
#include "recorder/file_names.h"
#include "recorder/help.h"
#include "recorder/messages.h"
#include "recorder/output_file.h"

namespace corvane::recorder {
namespace {

constexpr double DurationMax = 10000 * 3600.0;  // s; over a year of recording is a typing mistake

constexpr int64_t SamplesMax = 36000000000;  // kadrs; as many as come in that time
constexpr int64_t EveryMax = 1000000000;
constexpr int64_t SplitBytesMin = 1000;

[[noreturn]] void ThrowUsage(const std::string& what) {
    throw Failure(ExitCode::Usage, what);
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
        ThrowUsage(Say("--rate {}: give a number of Hz above 0, for example 500.", text));
    }
    return *rate;
}

// The texts of one command line, before they are understood.
struct RawOptions {
    std::string Channels = "fitted";
    std::string Rate;
    std::string Duration;
    std::string Samples;
    std::string Split;
    std::string Csv = "plain";
    std::string Format;
    std::string From;
    std::string To;
    std::string Every = "1";
    bool Means = false;
    bool MinMax = false;
    std::string StallTimeout = "60s";
    std::string Language;
};

void AddDeviceChoice(CLI::App* command, Options& options) {
    command->add_option("--server", options.Server, Say("Address of the LTR server (default: this machine's)"));
    command->add_option("--crate", options.Crate, Say("Serial number of the crate, where the server has several"));
    command->add_flag("--dialogs", options.Dialogs, Say("Let the driver ask in windows of its own (Windows only)"));
}

constexpr Text LanguageHelp = "Language of all that is said: en or ru (default: the user's)";
constexpr Text ReportLanguageHelp =
    "Language of all that is said, and in which the page opens: en or ru (default: the user's)";

// TakeLanguage has understood it before: help tells of it here.
void AddLanguage(CLI::App* app, RawOptions& raw, Text what) {
    app->add_option("--lang", raw.Language, Say(what));
}

void AddText(CLI::App* command, RawOptions& raw, Options& options) {
    command->add_option("--csv", raw.Csv,
                        Say("plain; excel: as Excel reads it with decimal points; excel-ru: with decimal commas"));
    command->add_flag("--keep-filled", options.KeepFilled,
                      Say("Where nothing was measured, write what the driver filled in, in place of empty cells"));
    command->add_flag("-q,--quiet", options.Quiet, Say("No progress, no summary; warnings and errors only"));
}

void AddTask(CLI::App* command, RawOptions& raw) {
    command
        ->add_option("-c,--channels", raw.Channels,
                     Say("Channels: 0-15,17 or fitted or all; given again, it adds to them (default: fitted)"))
        ->multi_option_policy(CLI::MultiOptionPolicy::Join);
    command->add_option("-r,--rate", raw.Rate, Say("Kadrs per second, in Hz (default: what the driver is set to)"));
}

CLI::App* AddMonitor(CLI::App& app, RawOptions& raw, Options& options) {
    CLI::App* monitor = app.add_subcommand("monitor", Say("Show the values of all channels while they come"));
    AddTask(monitor, raw);
    monitor->add_flag("--once", options.Once, Say("Print one table and end"));
    monitor->add_flag("--json", options.Json, Say("A line of JSON five times a second, or once, in place of a table"));
    return monitor;
}

CLI::App* AddRecord(CLI::App& app, RawOptions& raw, Options& options) {
    CLI::App* record = app.add_subcommand("record", Say("Record channels to a file"));
    AddTask(record, raw);
    CLI::Option* duration = record->add_option("-d,--duration", raw.Duration,
                                               Say("500ms, 10s, 2m, 1h30m or plain seconds (default: until Ctrl+C)"));
    record
        ->add_option("-n,--samples", raw.Samples,
                     Say("In place of a duration: samples of each channel, that is, kadrs"))
        ->excludes(duration);
    record
        ->add_option(
            "-o,--output", options.OutputPath,
            Say("File to write; it replaces an existing one when it is complete. NAME.npy: a NumPy array, with "
                "NAME.json beside it; any other name: text; -: text to standard output"))
        ->required();
    record->add_option("--format", raw.Format,
                       Say("csv, npy or influx, InfluxDB's line protocol (default: npy for NAME.npy, else csv)"));
    record->add_option("--split", raw.Split,
                       Say("Begin a new file, NAME-002 and so on, after a time (1h) or before a size (1GB)"));
    record->add_option("-p,--plot", options.PlotPath, Say("SVG picture of the recording to write"));
    record->add_option(
        "--stall-timeout", raw.StallTimeout,
        Say("End the recording when nothing is measured for so long; 0: wait till Ctrl+C (default: 60s)"));
    AddText(record, raw, options);
    return record;
}

CLI::App* AddConvert(CLI::App& app, RawOptions& raw, Options& options) {
    CLI::App* convert = app.add_subcommand("convert", Say("Turn a recording in a NumPy array into CSV"));
    convert->add_option(Say("input"), options.InputPath, Say("NAME.npy; NAME.json must lie beside it"))->required();
    convert
        ->add_option("-o,--output", options.OutputPath,
                     Say("CSV file to write; it replaces an existing one when it is complete. -: standard output"))
        ->required();
    convert->add_option("--from", raw.From, Say("Leave out what was recorded before this time: 90s, 1h30m"));
    convert->add_option("--to", raw.To, Say("Leave out what was recorded from this time on"));
    convert->add_option("--every", raw.Every, Say("One row for so many kadrs, with the values of the first of them"));
    CLI::Option* means = convert->add_flag("--means", raw.Means, Say("With --every: the means of what was measured"));
    convert
        ->add_flag("--minmax", raw.MinMax, Say("With --every: the lowest and the highest value of what was measured"))
        ->excludes(means);
    AddText(convert, raw, options);
    return convert;
}

CLI::App* AddDriver(CLI::App& app, Options& options) {
    struct Action {
        const char* Flag;
        Text Help;
        DriverAction What;
    };
    static constexpr Action Actions[] = {
        {"--real", "Register the driver beside this program", DriverAction::Real},
        {"--simulator", "Register the one with simulated vendor libraries, to try it without a crate",
         DriverAction::Simulator},
        {"--unregister", "Remove the driver's registration", DriverAction::Unregister},
        {"--libraries", "Tell whether the vendor's libraries are where the driver finds them, and where else they are",
         DriverAction::Libraries},
        {"--copy-libraries", "Copy the vendor's libraries beside the driver from where they are found",
         DriverAction::CopyLibraries},
        {"--programs", "List the programs that have the driver loaded", DriverAction::Programs}};
    CLI::App* driver = app.add_subcommand("driver", Say("Show which driver hosts load, or choose it (Windows only)"));
    auto* actions = driver->add_option_group("actions");
    actions->option_defaults()->group(Say("One of these"));
    for (const auto& [flag, help, action] : Actions) {
        actions->add_flag_callback(
            flag, [&options, action = action] { options.Driver = action; }, Say(help));
    }
    actions->require_option(0, 1);
    driver->add_option("--folder", options.DriverFolder, Say("The driver's folder (default: that of this program)"));
    driver->add_flag("--this-user", options.ThisUser, Say("Register, or unregister, for this user only"));
    return driver;
}

CLI::App* AddReport(CLI::App& app, Options& options) {
    CLI::App* report = app.add_subcommand("report", Say("Turn a recording into an HTML page to look into"));
    report
        ->add_option(Say("input"), options.InputPath, Say("NAME.npy, with NAME.json beside it, or a recorded CSV file"))
        ->required();
    report
        ->add_option("-o,--output", options.OutputPath,
                     Say("Page to write; it replaces an existing file when it is complete. -: standard output"))
        ->required();
    report->add_flag("-q,--quiet", options.Quiet, Say("No progress, no summary; warnings and errors only"));
    return report;
}

CsvStyle ParseCsvStyle(const std::string& text) {
    if (text == "plain") return PlainCsv;
    if (text == "excel") return ExcelCsv;
    if (text == "excel-ru") return RussianExcelCsv;
    ThrowUsage(Say("--csv {}: give plain, excel or excel-ru.", text));
}

int64_t ParseCount(const char* option, const std::string& text, int64_t max) {
    std::string_view rest = text;
    const auto count = TakeNumber<int64_t>(rest);
    if (!count || !rest.empty() || *count < 1 || *count > max) {
        ThrowUsage(Say("{} {}: give a whole number from 1 to {}.", option, text, max));
    }
    return *count;
}

bool EndsWithJson(const std::string& path) {
    std::string end = path.size() < 5 ? "" : path.substr(path.size() - 5);
    std::ranges::transform(end, end.begin(), [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return end == ".json";
}

FileFormat ParseFormat(const RawOptions& raw, const std::string& path) {
    const bool npy = IsNpy(path);
    if (raw.Format.empty()) return npy ? FileFormat::Npy : FileFormat::Csv;
    if (npy != (raw.Format == "npy")) {
        ThrowUsage(npy ? Say("--format {}: {} is a name for an array.", raw.Format, path)
                       : Say("--format {}: {} is a name for text; call it NAME.npy.", raw.Format, path));
    }
    if (raw.Format == "npy") return FileFormat::Npy;
    if (raw.Format == "csv") return FileFormat::Csv;
    if (raw.Format == "influx") return FileFormat::Influx;
    ThrowUsage(Say("--format {}: give csv, npy or influx.", raw.Format));
}

void UnderstandTask(RawOptions& raw, Options& options) {
    std::ranges::replace(raw.Channels, '\n', ',');  // between the values of several -c
    options.Channels = ParseChannelList(raw.Channels);
    if (!raw.Rate.empty()) options.Rate = ParseRate(raw.Rate);
    options.StallTimeout = ParseDuration(raw.StallTimeout);
}

void UnderstandMonitor(RawOptions& raw, Options& options) {
    options.Action = Command::Monitor;
    options.Kadrs = UntilInterrupted;
    UnderstandTask(raw, options);
}

void UnderstandRecord(RawOptions& raw, Options& options) {
    options.Action = Command::Record;
    UnderstandTask(raw, options);
    options.Kadrs = raw.Samples.empty() ? UntilInterrupted : ParseCount("--samples", raw.Samples, SamplesMax);
    if (!raw.Duration.empty()) options.Duration = ParseDuration(raw.Duration);
    if (options.Duration && *options.Duration <= 0) ThrowUsage(Say("--duration {}: must be above 0.", raw.Duration));
    options.Csv = ParseCsvStyle(raw.Csv);
    options.Format = ParseFormat(raw, options.OutputPath);
    const bool npy = options.Format == FileFormat::Npy;
    if (options.Format != FileFormat::Csv && raw.Csv != "plain") {
        ThrowUsage(npy ? Say("--csv is for CSV: {} becomes an array.", options.OutputPath)
                       : Say("--csv is for CSV: {} becomes line protocol.", options.OutputPath));
    }
    if (!raw.Split.empty()) options.Split = ParseSplit(raw.Split);
    if (options.Split && options.OutputPath == StandardOutput)
        ThrowUsage(Say("--split needs files: give a name with -o."));
    if (options.PlotPath == StandardOutput)
        ThrowUsage(Say("--plot needs a file: only the data can go to standard output."));
    if (npy && EndsWithJson(options.PlotPath)) {
        ThrowUsage(Say("--plot {}: a .json file beside the array says what is in it. Name the picture .svg.",
                       options.PlotPath));
    }
}

void UnderstandConvert(const RawOptions& raw, Options& options) {
    options.Action = Command::Convert;
    options.Csv = ParseCsvStyle(raw.Csv);
    if (!raw.From.empty()) options.From = ParseDuration(raw.From);
    if (!raw.To.empty()) options.To = ParseDuration(raw.To);
    if (options.To && *options.To <= options.From) ThrowUsage(Say("--to {}: must be later than --from.", raw.To));
    if (IsNpy(options.OutputPath)) ThrowUsage(Say("{}: convert writes CSV.", options.OutputPath));
    options.Every = ParseCount("--every", raw.Every, EveryMax);
    if ((raw.Means || raw.MinMax) && options.Every == 1) ThrowUsage(Say("--means and --minmax need --every N."));
    options.ThinBy = raw.Means ? Thinning::Means : raw.MinMax ? Thinning::MinMax : Thinning::First;
}

void UnderstandReport(Options& options) {
    options.Action = Command::Report;
    if (IsNpy(options.OutputPath)) ThrowUsage(Say("{}: report writes HTML.", options.OutputPath));
}

}  // namespace

SplitChoice ParseSplit(const std::string& text) {
    static constexpr std::pair<std::string_view, double> Units[] = {
        {"kB", 1e3}, {"MB", 1e6}, {"GB", 1e9}, {"TB", 1e12}};
    std::string_view rest = text;
    const auto number = TakeNumber<double>(rest);
    for (const auto& [unit, bytes] : Units) {
        if (!number || rest != unit) continue;
        const double size = *number * bytes;
        if (size >= SplitBytesMin && size <= 1e18) return {0, static_cast<int64_t>(size)};
        ThrowUsage(Say("--split {}: give a size of 1 kB or more.", text));
    }
    if (rest.ends_with('B')) ThrowUsage(Say("--split {}: sizes are in kB, MB, GB or TB.", text));
    const SplitChoice choice = {ParseDuration(text), 0};
    if (choice.Seconds <= 0) ThrowUsage(Say("--split {}: must be above 0.", text));
    return choice;
}

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
                Say("--channels {}: \"{}\" is no channel number or ascending range. Write it like 0-15,17 or fitted or "
                    "all.",
                    text, item));
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
            ThrowUsage(Say("{}: not understood as a time. Write it like 500ms, 10s, 2m, 1.5h or 1h30m.", text));
        }
        duration += *number * (seconds ? 1 : unit->second);
        if (!seconds) rest.remove_prefix(unit->first.size());
    } while (!rest.empty());
    if (duration <= DurationMax) return duration;
    ThrowUsage(Say("{}: a time is between 0 and 10000h.", text));
}

Options ParseCommandLine(std::vector<std::string> arguments) {
    Options options;
    RawOptions raw;
    TakeLanguage(arguments);
    CLI::App app(Say("Records LTR27 channels through the Corvane driver."), "ltr27rec");
    SpeakUserLanguage(app);
    app.require_subcommand(1);
    AddLanguage(&app, raw, LanguageHelp);
    CLI::App* list = app.add_subcommand("list", Say("Show the device and its channels"));
    CLI::App* settings = app.add_subcommand("settings", Say("Open the driver's setup dialog (Windows only)"));
    CLI::App* record = AddRecord(app, raw, options);
    CLI::App* monitor = AddMonitor(app, raw, options);
    for (CLI::App* command : {list, settings, record, monitor}) AddDeviceChoice(command, options);
    CLI::App* convert = AddConvert(app, raw, options);
    CLI::App* report = AddReport(app, options);
    CLI::App* driver = AddDriver(app, options);
    CLI::App* doctor =
        app.add_subcommand("doctor", Say("Find out whether a recording would work, and what to do if not"));
    AddDeviceChoice(doctor, options);
    doctor->add_flag("--json", options.Json, Say("What was found, as JSON"));
    const std::array commands = {list, monitor, record, convert, report, settings, driver, doctor};
    std::string names;
    for (CLI::App* each : commands) {
        names += (names.empty() ? "" : ", ") + each->get_name();
        each->group(Say("Commands"));
        each->get_help_ptr()->group(Say("Options"));  // it was there before the defaults
        AddLanguage(each, raw, each == report ? ReportLanguageHelp : LanguageHelp);
    }
    if (!arguments.empty() && !arguments.front().starts_with('-') &&
        std::ranges::none_of(commands, [&](const CLI::App* each) { return each->get_name() == arguments.front(); })) {
        ThrowUsage(Say("There is no command \"{}\", only {}. Run ltr27rec --help for help.", arguments.front(), names));
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
            ThrowUsage(Say("Give a command: {}. Run ltr27rec --help for help.", names));
        }
        ThrowUsage(Say("{}\nRun ltr27rec --help for help.", Translated(error.what())));
    }
    if (monitor->parsed()) UnderstandMonitor(raw, options);
    if (record->parsed()) UnderstandRecord(raw, options);
    if (convert->parsed()) UnderstandConvert(raw, options);
    if (report->parsed()) UnderstandReport(options);
    if (settings->parsed()) options.Action = Command::Settings;
    if (driver->parsed()) options.Action = Command::Driver;
    if (doctor->parsed()) options.Action = Command::Doctor;
    if (list->parsed()) options.Action = Command::List;
    return options;
}

}  // namespace corvane::recorder
