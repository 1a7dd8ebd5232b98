#include "recorder/driver_command.h"

#include <windows.h>
// windows.h first: the others build on it.
#include <algorithm>

#include "platform/win32/wide_text.h"
#include "recorder/console.h"
#include "recorder/failure.h"
#include "recorder/messages.h"
#include "recorder/setup/file_version.h"
#include "recorder/setup/registered_driver.h"
#include "recorder/setup/vendor_libraries.h"

namespace corvane::recorder {
namespace {

namespace fs = std::filesystem;

constexpr wchar_t Component[] = L"Corvane.adc";
constexpr wchar_t SimulatorFolder[] = L"simulator";

fs::path FolderOf(const Options& options) {
    if (!options.DriverFolder.empty()) return fs::absolute(platform::Wide(options.DriverFolder)).lexically_normal();
    std::wstring path(32768, L'\0');  // the longest there is
    path.resize(GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size())));
    return fs::path(path).parent_path();
}

bool HasSimulator(const fs::path& component) {
    return VersionOf((component.parent_path() / VendorLibraryNames[0]).native()).Simulated;
}

// ", SIMULATED" behind what is that.
std::string SimulatedMark(bool simulated) {
    return simulated ? ", " + Say("SIMULATED") : "";
}

void Print(const std::string& line) {
    WriteText(stdout, line + '\n');
}

std::string ImageText(Image kind) {
    static constexpr Text Texts[] = {"no library", "32-bit", "64-bit", "for another kind of machine"};
    return Say(Texts[static_cast<int>(kind)]);
}

void ShowDrivers() {
    const std::vector<RegisteredDriver> drivers = RegisteredDrivers();
    if (drivers.empty()) {
        Print(Say("No driver is registered: ltr27rec driver --real registers the one beside this program."));
    }
    for (const RegisteredDriver& each : drivers) {
        std::error_code unknown;
        const Text users = each.OneUser ? Text(", registered for this user only") : Text(", registered for all users");
        const Text place = each.Hosts64 ? Text(", among 64-bit entries") : Text();
        const Text gone = fs::exists(each.File, unknown) ? Text() : Text("; THE FILE IS GONE");
        Print(platform::Utf8(each.File.native()) + SimulatedMark(HasSimulator(each.File)) + Say(users) + Say(place) +
              Say(gone));
    }
}

void Register(const fs::path& component, bool thisUser) {
    const bool allUsers = RegisterDriver(component, thisUser);
    const std::string done = allUsers ? Say("{} is registered for all users.", platform::Utf8(component.native()))
                                      : Say("{} is registered for this user only.", platform::Utf8(component.native()));
    Print(allUsers || thisUser ? done : done + ' ' + Say("For all users run this as administrator."));
    if (HasSimulator(component)) {
        Print(
            Say("SIMULATED: hosts see a crate that doesn't exist. ltr27rec driver --real goes back to the real one."));
    }
}

// Ends with Incomplete where copying would help: what the installer asks about.
ExitCode ShowLibraries(const fs::path& folder) {
    bool missing = false;
    bool elsewhere = true;
    for (const wchar_t* name : VendorLibraryNames) {
        const std::vector<VendorLibrary> found = FindVendorLibrary(name, folder);
        for (const VendorLibrary& each : found) {
            Print(platform::Utf8(each.File.native()) + ": " + ImageText(each.Kind) + SimulatedMark(each.Simulated) +
                  Say(each.Bound ? Text() : Text("; not where the driver looks")));
        }
        if (!found.empty() && found.front().Bound) continue;
        missing = true;
        elsewhere = elsewhere && std::ranges::any_of(found, IsWorthCopying);
    }
    const MissingLibraries reasons = FindMissingLibraries(folder);
    if (reasons.Reason.empty()) return ExitCode::Success;
    Print(reasons.Text());
    return missing && elsewhere ? ExitCode::Incomplete : ExitCode::NoDriver;
}

void CopyLibraries(const fs::path& folder) {
    const std::vector<fs::path> copied = CopyVendorLibraries(folder);
    for (const fs::path& file : copied) Print(Say("{} was copied here.", platform::Utf8(file.native())));
    const MissingLibraries missing = FindMissingLibraries(folder);
    if (!missing.Reason.empty()) throw Failure(ExitCode::NoDriver, missing.Text());
    if (copied.empty()) Print(Say("The driver finds both libraries: nothing was copied."));
}

void ShowPrograms(const fs::path& folder) {
    for (const fs::path& each : {folder, folder / SimulatorFolder}) {
        for (const LoadedBy& program : ProgramsUsing(each)) {
            Print(Say("{} (process {})", program.Program, program.Process));
        }
    }
}

}  // namespace

ExitCode ManageDriver(const Options& options) {
    const fs::path folder = FolderOf(options);
    switch (options.Driver) {
        case DriverAction::Show:
            ShowDrivers();
            break;
        case DriverAction::Real:
            Register(folder / Component, options.ThisUser);
            break;
        case DriverAction::Simulator:
            Register(folder / SimulatorFolder / Component, options.ThisUser);
            break;
        case DriverAction::Unregister:
            UnregisterDriver(folder / Component, options.ThisUser);
            Print(Say("The driver is not registered any more."));
            break;
        case DriverAction::Libraries:
            return ShowLibraries(folder);
        case DriverAction::CopyLibraries:
            CopyLibraries(folder);
            break;
        case DriverAction::Programs:
            ShowPrograms(folder);
            break;
    }
    return ExitCode::Success;
}

}  // namespace corvane::recorder
