#include "recorder/list_command.h"

#include <fmt/format.h>
#include <algorithm>
#include <array>

#include "base/utf8.h"
#include "recorder/channel.h"
#include "recorder/failure.h"

namespace corvane::recorder {
namespace {

constexpr size_t Columns = 6;
using Row = std::array<std::string, Columns>;

Row ChannelRow(const Channel& channel) {
    const std::string number = fmt::format("{}", channel.Number);
    if (!channel.Fitted()) return {number, "(empty)", "-", "-", "-", "-"};
    return {number,
            channel.Name,
            channel.Range,
            channel.Unit,
            fmt::format("{:.6g}", channel.Scale),
            fmt::format("{:.6g}", channel.Offset)};
}

void AppendRow(std::string& text, const Row& row, const std::array<size_t, Columns>& widths) {
    static constexpr bool RightAligned[Columns] = {true, false, false, false, true, true};
    std::string line;
    for (size_t column = 0; column < Columns; column++) {
        const std::string padding(widths[column] - CharacterCount(row[column]), ' ');
        if (column > 0) line += "  ";
        line += RightAligned[column] ? padding + row[column] : row[column] + padding;
    }
    line.erase(line.find_last_not_of(' ') + 1);
    text += line + '\n';
}

}  // namespace

void OpenDevice(HostDevice& device) {
    if (device.Test()) return;
    const std::string reason = device.LastError();
    // The driver has nothing to say when the user has chosen none of the crates.
    if (reason.empty()) throw Failure(ExitCode::NoDevice, "No device was chosen, or none has an LTR27 module.");
    throw Failure(
        ExitCode::NoDevice,
        fmt::format("No LTR27 module could be opened. {}\nCheck that the LTR server is running, that the crate "
                    "is connected to it and switched on, and that an LTR27 module is in it.",
                    reason));
}

std::string ListDevice(HostDevice& device) {
    std::vector<Row> rows = {{"No", "Name", "Range", "Unit", "Samples/unit", "Offset"}};
    for (const Channel& channel : ReadChannels(device)) rows.push_back(ChannelRow(channel));

    std::array<size_t, Columns> widths{};
    for (const Row& row : rows) {
        for (size_t column = 0; column < Columns; column++) {
            widths[column] = std::max(widths[column], CharacterCount(row[column]));
        }
    }
    std::string text =
        fmt::format("{}: {} channels, {} bits, up to {:.6g} Hz, now set to {:.6g} Hz\n\n", device.ADCName(),
                    rows.size() - 1, device.Resolution(), device.RateMax(), device.Rate());
    for (const Row& row : rows) AppendRow(text, row, widths);
    return text;
}

}  // namespace corvane::recorder
