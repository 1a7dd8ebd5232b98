#include "recorder/help.h"

#include <corvane_version.h>
#include <algorithm>
#include <iterator>
#include <memory>
#include <string_view>

#include "recorder/failure.h"
#include "recorder/messages.h"
#include "recorder/text_columns.h"

namespace corvane::recorder {
namespace {

constexpr const char* Version = "ltr27rec " CORVANE_VERSION;
constexpr size_t NameColumns = 30;
constexpr size_t LineColumns = 79;  // so that no terminal of 80 wraps it

constexpr std::string_view Examples = R"(
  ltr27rec list
  ltr27rec monitor --rate 50
  ltr27rec record -o run.csv
  ltr27rec record -d 8h --split 1h -o run.npy
  ltr27rec convert run-003.npy --from 10m --to 11m --every 100 -o minute.csv
  ltr27rec report run-003.npy -o run-003.html
  ltr27rec record -c 0-15,17 -r 500 -d 2m -o run.csv --plot run.svg
  ltr27rec record --crate 3T123456 -c all -d 1h30m -o - | gzip > run.csv.gz
  ltr27rec record --format influx -o - | your-program
  ltr27rec settings

)";

struct ExitCodeHelp {
    const char* Code;
    Text Meaning;
};
constexpr ExitCodeHelp ExitCodes[] = {
    {"0", "done"},
    {"1", "the command line is wrong, or asks for a window where the driver has none"},
    {"2", "the driver can't be loaded: not registered, or a library of the LTR software is missing"},
    {"3", "no crate or no module was found, or several crates and --crate names none of them"},
    {"4", "the recording could not be started"},
    {"5", "a file could not be written"},
    {"6",
     "not every kadr was measured, in order, and written: the end of the CSV file lists what was not measured, and "
     "every other reason for doubt"},
    {"7", "a recording to convert or report can't be read, or its files contradict each other"},
    {"130", "ended by Ctrl+C; what was recorded until then is kept"}};

// A name and, from a column on, what it means, in as many lines as that takes.
std::string Row(const std::string& name, std::string_view meaning, size_t from) {
    std::string text = "  " + name;
    size_t column = ColumnsOf(text);
    if (column + 1 > from) column = LineColumns;  // the meaning begins on a line of its own
    for (bool first = true; !meaning.empty(); first = false) {
        const std::string_view word = meaning.substr(0, meaning.find(' '));
        meaning.remove_prefix(std::min(word.size() + 1, meaning.size()));
        if (first && column < from) {
            text.append(from - column, ' ');
            column = from;
        } else if (column + 1 + ColumnsOf(word) > LineColumns) {
            text += '\n' + std::string(from, ' ');
            column = from;
        } else {
            text += ' ';
            column++;
        }
        text += word;
        column += ColumnsOf(word);
    }
    return text + '\n';
}

class HelpFormatter : public CLI::Formatter {
public:
    HelpFormatter() {
        label("Usage", Say("Usage"));
        label("OPTIONS", Say("OPTIONS"));
        label("SUBCOMMAND", Say("SUBCOMMAND"));
        label("Positionals", Say("Positionals"));
        label("TEXT", Say("TEXT"));
        label("REQUIRED", Say("REQUIRED"));
        label("Excludes", Say("Excludes"));
    }
    std::string make_option(const CLI::Option* option, bool positional) const override {
        return Row(make_option_name(option, positional) + make_option_opts(option), make_option_desc(option),
                   NameColumns);
    }
    std::string make_subcommand(const CLI::App* command) const override {
        return Row(command->get_name(), command->get_description(), NameColumns);
    }
    // Of a group of options: the group's name says how many of them may be given.
    std::string make_expanded(const CLI::App* group) const override {
        return make_groups(group, CLI::AppFormatMode::Sub);
    }
};

std::string Footer() {
    constexpr size_t CodeColumns = 7;
    std::string text = Say("Examples:") + std::string(Examples) + Say("Exit codes:") + '\n';
    for (const auto& [code, meaning] : ExitCodes) text += Row(code, Say(meaning), CodeColumns);
    text.pop_back();
    return text;
}

}  // namespace

void TakeLanguage(std::vector<std::string>& arguments) {
    constexpr std::string_view Option = "--lang";
    for (auto each = arguments.begin(); each != arguments.end() && *each != "--";) {
        const std::string_view argument = *each;
        const bool apart = argument == Option;
        if (!apart && !(argument.starts_with(Option) && argument.substr(Option.size()).starts_with('='))) {
            ++each;
            continue;
        }
        const auto value = std::next(each);
        const bool given = apart && value != arguments.end();
        const std::string language = given ? *value : apart ? "" : std::string(argument.substr(Option.size() + 1));
        if (language != "en" && language != "ru") {
            throw Failure(ExitCode::Usage, Say("--lang {}: give en or ru.", language));
        }
        ChooseLanguage(language == "ru" ? Language::Russian : Language::English);
        each = arguments.erase(each, given ? std::next(value) : value);
    }
}

void SpeakUserLanguage(CLI::App& app) {
    app.formatter(std::make_shared<HelpFormatter>());
    app.option_defaults()->group(Say("Options"));
    app.set_help_flag("-h,--help", Say("Print this help message and exit"));
    app.set_version_flag("--version", Version, Say("Display program version information and exit"));
    app.footer(Footer());
}

}  // namespace corvane::recorder
