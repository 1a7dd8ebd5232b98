// Module records of any bytes: the model that hosts are shown, the setup dialog, the recorder's list and headers.
#include <algorithm>
#include <cmath>

#include "driver/driver_object.h"
#include "fuzz/vendor_library.h"
#include "recorder/channel.h"
#include "recorder/csv_writer.h"
#include "recorder/list_command.h"
#include "recorder/svg_plot.h"
#include "settings/dlgSetup.h"
#include "standins/registry_hooks.h"
#include "standins/user.h"

namespace corvane {
namespace {

void RequireModel(const DriverObject& driver) {
    const int channels = driver.ChannelsCount();
    const std::vector<std::string> ranges = driver.Ranges();
    Require(channels == std::max<int>(driver.ModulesCount(), 1) * ModuleChannels, "channels of each module");
    Require(ranges.size() * 2 == static_cast<size_t>(channels), "a range for each mezzanine");
    for (int16_t channel = 0; channel < channels; channel++) {
        Require(driver.ChannelRange(channel) == channel / 2, "the range of its mezzanine");
        const float scale = driver.ChannelUnitScale(channel);
        Require(std::isnormal(scale) && std::isfinite(driver.ChannelUnitOffset(channel)), "usable coefficients");
        Require(!driver.ChannelName(channel).empty(), "a name");
        RequireText(driver.ChannelName(channel), "", "a name in one line");
        RequireText(driver.ChannelUnitName(channel), "", "a unit in one line");
    }
    for (const std::string& range : ranges) RequireText(range, "", "a range in one line");
    for (int16_t module = 0; module < driver.ModulesCount(); module++) {
        const std::string info = driver.ModuleInfo(module);
        RequireText(info, "\r\n", "a description");
        Require(std::ranges::count(info, '\n') == 3, "four lines");
    }
    RequireText(driver.LastError(), AnyControl, "an error in UTF-8");
}

void RequireDialog(DriverObject& driver) {
    UserOfSetup = [&](dlgSetup& dialog) {
        Require(dialog.lstMezzanines.size() == static_cast<size_t>(driver.ModulesCount()) * MezzaninePositions,
                "lines");
        Require(dialog.tvwLTR.size() == static_cast<size_t>(driver.ModulesCount()) + 1, "nodes");
        for (const platform::TreeNode& node : dialog.tvwLTR) dialog.ClickNode(node.Key);
    };
    ShownMessages.clear();
    driver.SetInteractive(true);
    driver.ShowSetting();
    driver.SetInteractive(false);
    Require(ShownMessages.empty(), "a dialog without a message");
}

// Fields of a CSV line.
size_t Fields(std::string_view line) {
    size_t fields = 1;
    bool quoted = false;
    for (const char character : line) {
        if (character == '"') quoted = !quoted;
        if (character == ',' && !quoted) fields++;
    }
    Require(!quoted, "quotes in pairs");
    return fields;
}

void RequireRecorder() {
    recorder::HostDevice device;
    const std::vector<recorder::Channel> channels = ReadChannels(device);
    RequireText(ListDevice(device), "\n", "a list");
    std::string text;
    recorder::CsvWriter csv(channels, 1000);
    csv.AppendHeader(text, {});
    const std::vector<int16_t> samples(channels.size(), -32768);
    csv.AppendRows(text, {samples, {}});
    RequireText(text, "\n", "a CSV file");
    Require(std::ranges::count(text, '\n') == 2, "a header and a row");
    const size_t header = text.find('\n');
    Require(Fields(text.substr(0, header)) == channels.size() + 1, "a column for each channel");
    Require(Fields(text.substr(header)) == channels.size() + 1, "a value for each channel");
    for (const recorder::Channel& channel : channels) {
        Require(recorder::EscapeXml(channel.Name + channel.Unit).find_first_of("<>\"'") == text.npos, "escaped");
    }
}

}  // namespace
}  // namespace corvane

// Bytes: the slots with modules, then what the modules answer.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace corvane;
    platform::ClearRegistry();
    FuzzInput input(data, size);
    Answers.Slots = input.Any<uint16_t>() | 1;
    Answers.Modules = &input;
    {
        DriverObject driver;
        driver.SetInteractive(false);
        const bool opened = driver.Test();
        Require(opened == (driver.ModulesCount() > 0), "open with a module");
        Require(driver.ModulesCount() <= 2, "two modules at most");
        RequireModel(driver);
        RequireDialog(driver);
        RequireRecorder();
    }
    Answers.Modules = nullptr;
    Require(Answers.Connections == 0, "every module closed");
    return 0;
}
