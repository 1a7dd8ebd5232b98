// What the doctor looks at before the driver can be loaded.
#include <windows.h>
// windows.h first: the others build on it.
#include <algorithm>

#include "platform/win32/wide_text.h"
#include "recorder/finding.h"
#include "recorder/setup/registered_driver.h"
#include "recorder/setup/vendor_libraries.h"

namespace corvane::recorder {
namespace {

constexpr Text RegisterIt = "Register the driver: ltr27rec driver --real (as administrator: for all users)";

Finding ExamineRegistration(const std::vector<RegisteredDriver>& drivers) {
    Finding finding{"Registration", Health::Works, ""};
    for (const RegisteredDriver& each : drivers) {
        if (!finding.Words.empty()) finding.Words += '\n';
        finding.Words += platform::Utf8(each.File.native()) +
                         Say(each.OneUser ? Text(", for this user only") : Text(", for all users")) +
                         Say(each.Hosts64 ? Text(", among the entries for 64-bit hosts") : Text());
    }
    const auto serves = [](const RegisteredDriver& each) { return !each.Hosts64; };
    if (std::ranges::none_of(drivers, serves)) {
        finding.Result = Health::Fails;
        finding.Words += drivers.empty() ? Say("the driver is not registered") : '\n' + Say("nothing for 32-bit hosts");
        finding.Remedy = Say(RegisterIt);
    } else if (std::ranges::none_of(drivers,
                                    [&](const RegisteredDriver& each) { return serves(each) && !each.OneUser; })) {
        finding.Result = Health::Doubtful;
        finding.Remedy =
            Say("A host that runs with administrator's rights does not see it. For all users, as administrator: "
                "ltr27rec driver --real");
    }
    return finding;
}

Finding ExamineFile(const std::filesystem::path& file) {
    std::error_code error;
    if (!std::filesystem::exists(file, error)) {
        return {"File", Health::Fails, Say("{} is gone", platform::Utf8(file.native())),
                Say("Install Corvane again, or register another copy. {}", Say(RegisterIt))};
    }
    if (ImageOfFile(file) != Image::Windows32) {
        return {"File", Health::Fails, Say("{} is damaged: no 32-bit program", platform::Utf8(file.native())),
                Say("Install Corvane again.")};
    }
    return {"File", Health::Works, platform::Utf8(file.native())};
}

Finding ExamineLibraries(const std::filesystem::path& folder) {
    MissingLibraries missing = FindMissingLibraries(folder);
    if (missing.Reason.empty())
        return {"Vendor libraries", Health::Works, Say("both are where the driver finds them, 32-bit")};
    return {"Vendor libraries", Health::Fails, std::move(missing.Reason), std::move(missing.Remedy)};
}

}  // namespace

std::vector<Finding> ExamineInstallation() {
    const std::vector<RegisteredDriver> drivers = RegisteredDrivers();
    std::vector<Finding> findings = {ExamineRegistration(drivers)};
    if (findings.back().Result == Health::Fails) return findings;
    const std::filesystem::path file = drivers.front().File;
    findings.push_back(ExamineFile(file));
    if (findings.back().Result == Health::Fails) return findings;
    findings.push_back(ExamineLibraries(file.parent_path()));
    return findings;
}

}  // namespace corvane::recorder
