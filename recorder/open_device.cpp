#include "recorder/open_device.h"

#include <fmt/format.h>

#include "recorder/failure.h"
#include "recorder/messages.h"

namespace corvane::recorder {
namespace {

void Choose(const Options& options, HostDevice& device) {
    const bool asks = options.Dialogs || options.Action == Command::Settings;
    if (asks && !HostDevice::HasDialogs()) {
        throw Failure(ExitCode::Usage, Say("This build has no windows: use ltr27rec.exe on Windows."));
    }
    device.SetInteractive(asks);
    if (!device.SetServer(options.Server)) {
        throw Failure(ExitCode::Usage,
                      Say("--server {}: give an address of four numbers, for example 192.168.1.20.", options.Server));
    }
    device.SetCrateSerial(options.Crate);
}

// The serial numbers that the driver names in quotes, each as an option to copy.
std::string CrateOptions(std::string_view reason) {
    std::string options;
    for (;;) {
        const size_t start = reason.find('"');
        const size_t end = start == std::string_view::npos ? start : reason.find('"', start + 1);
        if (end == std::string_view::npos) return options;
        options += fmt::format("\n  --crate {}", reason.substr(start + 1, end - start - 1));
        reason.remove_prefix(end + 1);
    }
}

std::string WhyNone(const Options& options, const std::string& reason) {
    if (reason.starts_with("Several crates")) {
        return Say("Several crates were found. Name one of them:{}", CrateOptions(reason));
    }
    const size_t found = reason.find("Found: ");
    if (reason.starts_with("There is no crate") && found != std::string::npos) {
        return Say("There is no crate with the serial number {}. Found:{}", options.Crate,
                   CrateOptions(std::string_view(reason).substr(found)));
    }
    const std::string where =
        options.Server.empty() ? Say("on this machine; --server names another one") : Say("at {}", options.Server);
    return Say(
        "No LTR27 module could be opened{}{}\nCheck that the LTR server is running ({}), that the crate is connected "
        "to it and switched on, and that an LTR27 module is in it.",
        reason.empty() ? "." : ". ", Translated(reason), where);
}

}  // namespace

void OpenDevice(const Options& options, HostDevice& device) {
    Choose(options, device);
    if (!device.Test()) throw Failure(ExitCode::NoDevice, WhyNone(options, device.LastError()));
}

}  // namespace corvane::recorder
