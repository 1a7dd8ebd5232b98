// The recorder's command line with any arguments: refused with the code for that, or options within their bounds.
#include <fmt/format.h>
#include <cmath>
#include <optional>
#include <vector>

#include "fuzz/fuzz_input.h"
#include "recorder/failure.h"
#include "recorder/options.h"

namespace corvane::recorder {
namespace {

constexpr double LongestTime = 3.6e7;  // s, 10000 hours

// None when the text was refused.
template <class Parse, class Text>
auto Parsed(Parse parse, const Text& text) -> std::optional<decltype(parse(text))> {
    try {
        return parse(text);
    } catch (const Failure& failure) {
        Require(failure.Code == ExitCode::Usage && failure.what()[0] != '\0', "a reason");
        return std::nullopt;
    }
}

void RequireChannels(const std::string& text) {
    const auto choice = Parsed(ParseChannelList, text);
    if (!choice) return;
    Require(choice->All || choice->Fitted || !choice->Numbers.empty(), "some channel");
    Require(choice->Numbers.empty() || *choice->Numbers.begin() >= 0, "channel numbers");
    std::string again = choice->All ? ",all" : "";
    if (choice->Fitted) again += ",fitted";
    for (const int16_t number : choice->Numbers) again += fmt::format(",{0}-{0}", number);
    Require(ParseChannelList(again.substr(1)) == *choice, "the same choice, written anew");
}

void RequireDuration(const std::string& text) {
    const auto duration = Parsed(ParseDuration, text);
    if (!duration) return;
    Require(*duration >= 0 && *duration <= LongestTime, "a time");
    Require(ParseDuration(fmt::format("{}s", *duration)) == *duration, "the same time, written anew");
}

void RequireOptions(const std::vector<std::string>& arguments) {
    const auto options = Parsed(ParseCommandLine, arguments);
    if (!options) return;
    Require((options->Action == Command::Print) == !options->Text.empty(),
            "help or version, and nothing else, is text");
    if (options->Action != Command::Record) return;
    Require(!options->OutputPath.empty(), "a file to write");
    Require(options->PlotPath != "-", "a picture goes to a file");
    Require(options->Kadrs > 0, "a number of kadrs");
    Require(!options->Duration || (*options->Duration > 0 && *options->Duration <= LongestTime), "a duration");
    Require(options->StallTimeout >= 0 && options->StallTimeout <= LongestTime, "a time-out");
    Require(!options->Rate || (*options->Rate > 0 && std::isfinite(*options->Rate)), "a rate");
}

// Arguments with a zero between them. A byte above the letters stands for a whole piece: chance alone writes no option.
std::vector<std::string> Arguments(std::string_view bytes) {
    static constexpr std::string_view Pieces[] = {
        "record", "list",    "settings",  "--output",   "-o",       "out.csv",  "--channels", "-c",
        "0-15",   "fitted",  "all",       "--duration", "-d",       "1h30m",    "ms",         "--rate",
        "-r",     "500Hz",   "1e3",       "--plot",     "-p",       "--server", "--crate",    "--stall-timeout",
        "-q",     "--help",  "--version", "--quiet",    "=",        "--",       "convert",    "in.npy",
        "--from", "--to",    "--every",   "--split",    "-n",       "out.npy",  "--csv",      "excel-ru",
        "1GB",    "--means", "--minmax",  "--samples",  "--format", "influx",   "report",     "--lang",
        "ru",     "monitor", "--once",    "--json",     "doctor",   "driver",   "--real"};
    std::vector<std::string> arguments(1);
    for (const char byte : bytes) {
        const auto piece = static_cast<uint8_t>(byte) - 128u;
        if (byte == '\0') {
            arguments.emplace_back();
        } else if (piece < 2 * std::size(Pieces)) {
            arguments.back() += Pieces[piece / 2];
            if (piece % 2 != 0) arguments.emplace_back();
        } else {
            arguments.back() += byte;
        }
    }
    return arguments;
}

}  // namespace
}  // namespace corvane::recorder

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace corvane::recorder;
    const std::vector<std::string> arguments = Arguments({reinterpret_cast<const char*>(data), size});
    RequireOptions(arguments);
    RequireChannels(arguments.front());
    RequireDuration(arguments.front());
    return 0;
}
