#include "recorder/command_line.h"

#include <fmt/format.h>
#include <exception>

#include "recorder/console.h"
#include "recorder/convert_command.h"
#include "recorder/doctor_command.h"
#include "recorder/driver_command.h"
#include "recorder/host_device.h"
#include "recorder/list_command.h"
#include "recorder/messages.h"
#include "recorder/monitor_command.h"
#include "recorder/open_device.h"
#include "recorder/options.h"
#include "recorder/record_command.h"
#include "recorder/report_command.h"

namespace corvane::recorder {
namespace {

ExitCode Run(const Options& options) {
    if (options.Action == Command::Print) {
        WriteText(stdout, options.Text);
        return ExitCode::Success;
    }
    if (options.Action == Command::Convert) return Convert(options);
    if (options.Action == Command::Driver) return ManageDriver(options);
    if (options.Action == Command::Doctor) return Examine(options);
    if (options.Action == Command::Report) return MakeReport(options);
    HostDevice device;
    OpenDevice(options, device);
    if (options.Action == Command::Settings) {
        device.ShowSetting();
        return ExitCode::Success;
    }
    if (options.Action == Command::Monitor) return Monitor(options, device);
    if (options.Action == Command::Record) return Record(options, device);
    WriteText(stdout, ListDevice(device));
    return ExitCode::Success;
}

}  // namespace

ExitCode RunCommandLine(const std::vector<std::string>& arguments) {
    ChooseLanguage(UserReadsRussian() ? Language::Russian : Language::English);
    try {
        return Run(ParseCommandLine(arguments));
    } catch (const Failure& failure) {
        WriteText(stderr, fmt::format("ltr27rec: {}\n", failure.what()));
        return failure.Code;
    } catch (const std::exception& error) {
        WriteText(stderr, Say("ltr27rec: it can't go on: {}", error.what()) + '\n');
        return ExitCode::Incomplete;
    }
}

}  // namespace corvane::recorder
