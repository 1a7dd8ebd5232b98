#include "recorder/device_summary.h"

#include <fmt/format.h>
#include <algorithm>
#include <string_view>

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
    return "?";
}

std::string LibraryText(const Library& library) {
    std::string text = library.Name;
    if (!library.Version.empty()) text += ' ' + library.Version;
    if (library.Simulated) text += " SIMULATED";
    if (!library.File.empty()) text += " (" + library.File + ')';
    return text;
}

// Characters that have one and the same byte in nearly every code page of the European languages.
bool Common(char32_t character) {
    return character < 0x80 || character == 0xB0 || character == 0xB1 || character == 0xB5;
}

}  // namespace

DeviceSummary SummaryOf(const HostDevice& device) {
    const std::vector<Library> libraries = device.Libraries();
    const bool simulated = std::ranges::any_of(libraries, &Library::Simulated);
    DeviceSummary summary{device.ADCName() + (simulated ? " (SIMULATED)" : ""), {}};
    std::vector<std::string>& lines = summary.Lines;
    const std::string crate = device.CrateInfo();
    lines.push_back("Server: " + Described(crate, "Crate IP"));
    lines.push_back(fmt::format("Crate: {}, serial {}, {}", Described(crate, "Crate"), Described(crate, "Crate SN"),
                                Described(crate, "Crate Port")));
    for (int16_t i = 0; i < device.ModulesCount(); i++) {
        const std::string module = device.ModuleInfo(i);
        lines.push_back(fmt::format("Module: {}, slot {}, serial {}, firmware {}", Described(module, "Board"),
                                    Described(module, "Crate Slot"), Described(module, "Board SN"),
                                    Described(module, "Firmware")));
    }
    const auto mode = static_cast<size_t>(device.StartMarkMode());
    if (mode < dlgSetup::MarkModes.size()) lines.push_back(fmt::format("START mark: {}", dlgSetup::MarkModes[mode]));
    for (const Library& library : libraries) lines.push_back("Library: " + LibraryText(library));
    return summary;
}

std::string UnitsAdvice(std::span<const Channel> channels) {
    if (HostDevice::ReadsModuleTexts()) return "";
    for (const Channel& channel : channels) {
        for (std::string_view unit = channel.Unit; !unit.empty();) {
            if (Common(TakeCharacter(unit))) continue;
            return fmt::format(
                "Units such as \"{}\" are Russian texts of the modules, and this system takes them for another "
                "language's. The values are right. To have the units right: Control Panel, Region, Administrative, "
                "Language for non-Unicode programs: Russian (under Wine: LC_ALL=ru_RU.UTF-8), then start again.",
                channel.Unit);
        }
    }
    return "";
}

}  // namespace corvane::recorder
