#include "recorder/driver_command.h"

#include <windows.h>
// windows.h first: the others build on it.
#include <fmt/format.h>

#include "platform/win32/wide_text.h"
#include "recorder/console.h"
#include "recorder/failure.h"
#include "recorder/setup/file_version.h"
#include "recorder/setup/registered_driver.h"
#include "recorder/setup/vendor_libraries.h"

namespace corvane::recorder {
namespace {

namespace fs = std::filesystem;

constexpr wchar_t Component[] = L"Corvane.adc";

std::string Utf8(const fs::path& path) {
    return platform::Utf8(path.native());
}

fs::path FolderOfThisProgram() {
    std::wstring path(32768, L'\0');  // the longest there is
    path.resize(GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size())));
    return fs::path(path).parent_path();
}

fs::path RealDriver() {
    return FolderOfThisProgram() / Component;
}

fs::path SimulatorDriver() {
    return FolderOfThisProgram() / L"simulator" / Component;
}

bool HasSimulator(const fs::path& component) {
    return VersionOf((component.parent_path() / VendorLibraryNames[0]).native()).Simulated;
}

void Say(const std::string& line) {
    WriteText(stdout, line + '\n');
}

void ShowDrivers() {
    const std::vector<RegisteredDriver> drivers = RegisteredDrivers();
    if (drivers.empty()) Say("No driver is registered: ltr27rec driver --real registers the one beside this program.");
    for (const RegisteredDriver& each : drivers) {
        std::error_code unknown;
        Say(fmt::format("{}{}, registered for {}{}{}", Utf8(each.File), HasSimulator(each.File) ? ", SIMULATED" : "",
                        each.OneUser ? "this user only" : "all users", each.Hosts64 ? ", among 64-bit entries" : "",
                        fs::exists(each.File, unknown) ? "" : "; THE FILE IS GONE"));
    }
}

void Register(const fs::path& component, bool thisUser) {
    const bool allUsers = RegisterDriver(component, thisUser);
    Say(fmt::format("{} is registered for {}.{}", Utf8(component), allUsers ? "all users" : "this user only",
                    allUsers || thisUser ? "" : " For all users run this as administrator."));
    if (HasSimulator(component)) {
        Say("SIMULATED: hosts see a crate that doesn't exist. ltr27rec driver --real goes back to the real one.");
    }
}

// The simulator's copy does it as well, and can always be loaded.
void Unregister() {
    std::error_code unknown;
    UnregisterDriver(MissingLibraries(FolderOfThisProgram()).empty() || !fs::exists(SimulatorDriver(), unknown)
                         ? RealDriver()
                         : SimulatorDriver());
    Say("The driver is not registered any more.");
}

void CopyLibraries() {
    const std::vector<fs::path> copied = CopyVendorLibraries(FolderOfThisProgram());
    for (const fs::path& file : copied) Say(fmt::format("{} was copied here.", Utf8(file)));
    const std::string missing = MissingLibraries(FolderOfThisProgram());
    if (!missing.empty()) throw Failure(ExitCode::NoDriver, missing);
    if (copied.empty()) Say("Both libraries are there: nothing was copied.");
}

}  // namespace

ExitCode ManageDriver(const Options& options) {
    switch (options.Driver) {
        case DriverAction::Show:
            ShowDrivers();
            break;
        case DriverAction::Real:
            Register(RealDriver(), options.ThisUser);
            break;
        case DriverAction::Simulator:
            Register(SimulatorDriver(), options.ThisUser);
            break;
        case DriverAction::Unregister:
            Unregister();
            break;
        case DriverAction::CopyLibraries:
            CopyLibraries();
            break;
        case DriverAction::Users:
            for (const fs::path& folder : {FolderOfThisProgram(), FolderOfThisProgram() / L"simulator"}) {
                for (const LoadedBy& each : ProgramsUsing(folder)) {
                    Say(fmt::format("{} (process {})", each.Program, each.Process));
                }
            }
            break;
    }
    return ExitCode::Success;
}

}  // namespace corvane::recorder
