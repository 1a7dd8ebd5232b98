#include "recorder/list_command.h"

#include <fmt/format.h>
#include <algorithm>
#include <array>

#include "base/utf8.h"
#include "recorder/channel.h"
#include "recorder/device_summary.h"
#include "recorder/words.h"

namespace corvane::recorder {
namespace {

constexpr size_t TableColumns = 6;
using Row = std::array<std::string, TableColumns>;

Row ChannelRow(const Channel& channel) {
    const std::string number = fmt::format("{}", channel.Number);
    if (!channel.Fitted()) return {number, Say("(empty)"), "-", "-", "-", "-"};
    return {number,
            channel.Name,
            channel.Range,
            channel.Unit,
            fmt::format("{:.6g}", channel.Scale),
            fmt::format("{:.6g}", channel.Offset)};
}

void AppendRow(std::string& text, const Row& row, const std::array<size_t, TableColumns>& widths) {
    static constexpr bool RightAligned[TableColumns] = {true, false, false, false, true, true};
    std::string line;
    for (size_t column = 0; column < TableColumns; column++) {
        const std::string padding(widths[column] - CharacterCount(row[column]), ' ');
        if (column > 0) line += "  ";
        line += RightAligned[column] ? padding + row[column] : row[column] + padding;
    }
    line.erase(line.find_last_not_of(' ') + 1);
    text += line + '\n';
}

}  // namespace

std::string ListDevice(HostDevice& device) {
    const std::vector<Channel> channels = ReadChannels(device);
    std::vector<Row> rows = {{Say("No"), Say("Name"), Say("Range"), Say("Unit"), Say("Samples/unit"), Say("Offset")}};
    for (const Channel& channel : channels) rows.push_back(ChannelRow(channel));

    std::array<size_t, TableColumns> widths{};
    for (const Row& row : rows) {
        for (size_t column = 0; column < TableColumns; column++) {
            widths[column] = std::max(widths[column], CharacterCount(row[column]));
        }
    }
    const DeviceSummary summary = SummaryOf(device);
    std::string text = Say("{}: {}, {} bits, up to {:.6g} Hz, now set to {:.6g} Hz", summary.Device(UserLanguage()),
                           Counted(static_cast<int64_t>(channels.size()), ChannelNoun), device.Resolution(),
                           device.RateMax(), device.Rate()) +
                       '\n';
    for (const std::string& line : summary.Lines(UserLanguage())) text += line + '\n';
    text += '\n';
    for (const Row& row : rows) AppendRow(text, row, widths);
    if (const std::string advice = UnitsAdvice(UserLanguage(), channels); !advice.empty()) text += '\n' + advice + '\n';
    return text;
}

}  // namespace corvane::recorder
