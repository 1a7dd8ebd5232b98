#include "recorder/device_summary.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "base/utf8.h"
#include "settings/dlgSetup.h"

namespace corvane::recorder {
namespace {

// What follows the label in a description of lines like "Board SN: 2T340017".
std::string Described(std::string_view description, std::string_view label) {
    while (!description.empty()) {
        const size_t end = std::min(description.find("\r\n"), description.size());
        const std::string_view line = description.substr(0, end);
        if (line.starts_with(label) && line.substr(label.size()).starts_with(": ")) {
            return std::string(line.substr(label.size() + 2));
        }
        description.remove_prefix(std::min(end + 2, description.size()));
    }
    return "";
}

const char* OrUnknown(const std::string& text) {
    return text.empty() ? "?" : text.c_str();
}

// Characters that have one and the same byte in nearly every code page of the European languages.
bool Common(char32_t character) {
    return character < 0x80 || character == 0xB0 || character == 0xB1 || character == 0xB5;
}

}  // namespace

std::string LibraryText(Language language, const Library& library) {
    std::string text = library.Name;
    if (!library.Version.empty()) text += ' ' + library.Version;
    if (library.Simulated) text += ' ' + SayIn(language, "SIMULATED");
    if (!library.File.empty()) text += " (" + library.File + ')';
    return text;
}

bool DeviceSummary::Simulated() const {
    return std::ranges::any_of(Libraries, &Library::Simulated);
}

std::string DeviceSummary::Device(Language language) const {
    return Name + (Simulated() ? " (" + SayIn(language, "SIMULATED") + ')' : "");
}

std::vector<std::string> DeviceSummary::ModuleLines(Language language) const {
    std::vector<std::string> lines;
    for (const ModuleSummary& module : Modules) {
        lines.push_back(SayIn(language, "Module: {}, slot {}, serial {}, firmware {}", OrUnknown(module.Name),
                              OrUnknown(module.Slot), OrUnknown(module.Serial), OrUnknown(module.Firmware)));
    }
    return lines;
}

std::vector<std::string> DeviceSummary::Lines(Language language) const {
    std::vector<std::string> lines = {SayIn(language, "Server: {}", OrUnknown(Server)),
                                      SayIn(language, "Crate: {}, serial {}, {}", OrUnknown(CrateName),
                                            OrUnknown(CrateSerial), OrUnknown(CratePort))};
    for (std::string& line : ModuleLines(language)) lines.push_back(std::move(line));
    if (!StartMark.empty()) lines.push_back(SayIn(language, "START mark: {}", StartMark));
    for (const Library& library : Libraries) {
        lines.push_back(SayIn(language, "Library: {}", LibraryText(language, library)));
    }
    return lines;
}

DeviceSummary SummaryOf(const HostDevice& device) {
    DeviceSummary summary;
    summary.Name = device.ADCName();
    const std::string crate = device.CrateInfo();
    summary.Server = Described(crate, "Crate IP");
    summary.CrateName = Described(crate, "Crate");
    summary.CrateSerial = Described(crate, "Crate SN");
    summary.CratePort = Described(crate, "Crate Port");
    for (int16_t i = 0; i < device.ModulesCount(); i++) {
        const std::string module = device.ModuleInfo(i);
        summary.Modules.push_back({Described(module, "Board"), Described(module, "Crate Slot"),
                                   Described(module, "Board SN"), Described(module, "Firmware")});
    }
    const auto mode = static_cast<size_t>(device.StartMarkMode());
    if (mode < dlgSetup::MarkModes.size()) summary.StartMark = dlgSetup::MarkModes[mode];
    summary.Libraries = device.Libraries();
    return summary;
}

std::string UnitsAdvice(Language language, std::span<const Channel> channels) {
    if (HostDevice::ReadsModuleTexts()) return "";
    for (const Channel& channel : channels) {
        for (std::string_view unit = channel.Unit; !unit.empty();) {
            if (Common(TakeCharacter(unit))) continue;
            return SayIn(
                language,
                "Units such as \"{}\" are Russian texts of the modules, and this system takes them for another "
                "language's. The values are right. To have the units right: Control Panel, Region, Administrative, "
                "Language for non-Unicode programs: Russian (under Wine: LC_ALL=ru_RU.UTF-8), then start again.",
                channel.Unit);
        }
    }
    return "";
}

}  // namespace corvane::recorder
