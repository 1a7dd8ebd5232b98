#include "recorder/setup/registered_driver.h"

#include <windows.h>
// windows.h first: the others build on it.
#include <shlwapi.h>
#include <tlhelp32.h>

#include <algorithm>
#include <memory>

#include "driver/com/failure.h"
#include "driver/com/registration.h"
#include "platform/win32/wide_text.h"
#include "recorder/failure.h"
#include "recorder/file_system.h"
#include "recorder/messages.h"
#include "recorder/setup/vendor_libraries.h"

namespace corvane::recorder {
namespace {

namespace fs = std::filesystem;

std::wstring TextOf(HKEY root, const std::wstring& key, REGSAM view) {
    HKEY opened = nullptr;
    if (RegOpenKeyExW(root, (L"Software\\Classes\\" + key).c_str(), 0, KEY_READ | view, &opened) != ERROR_SUCCESS)
        return {};
    wchar_t text[2 * MAX_PATH] = L"";
    DWORD size = sizeof text - sizeof *text;
    if (SHGetValueW(opened, nullptr, nullptr, nullptr, text, &size) != ERROR_SUCCESS) *text = 0;
    RegCloseKey(opened);
    return text;
}

class Loaded {
public:
    explicit Loaded(const fs::path& file)
        : Module_(LoadLibraryExW(file.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH)), Error_(GetLastError()) {}
    ~Loaded() {
        if (Module_ != nullptr) FreeLibrary(Module_);
    }
    Loaded(const Loaded&) = delete;
    Loaded& operator=(const Loaded&) = delete;

    template <class Function>
    Function Get(const char* name) const {
        return reinterpret_cast<Function>(reinterpret_cast<void (*)()>(GetProcAddress(Module_, name)));
    }
    explicit operator bool() const { return Module_ != nullptr; }
    DWORD Error() const { return Error_; }

private:
    HMODULE Module_;
    DWORD Error_;
};

[[noreturn]] void ThrowNotLoaded(const fs::path& component, DWORD error) {
    const std::string file = platform::Utf8(component.native());
    std::error_code unknown;
    if (!fs::exists(component, unknown)) throw Failure(ExitCode::NoDriver, Say("There is no {}.", file));
    SetLastError(error);
    const std::string words = SystemErrorText();
    const MissingLibraries libraries = FindMissingLibraries(component.parent_path());
    throw Failure(ExitCode::NoDriver, libraries.Reason.empty()
                                          ? Say("{} can't be loaded: {} Install Corvane again.", file, words)
                                          : Say("{} can't be loaded.\n{}", file, libraries.Text()));
}

void CheckCall(HRESULT result, Text what) {
    if (SUCCEEDED(result)) return;
    throw Failure(ExitCode::NoDriver, result == E_ACCESSDENIED
                                          ? Say("{} needs administrator's rights.", Say(what))
                                          : Say("{} failed with 0x{:08X}.", Say(what), static_cast<uint32_t>(result)));
}

struct CloseSnapshot {
    void operator()(HANDLE snapshot) const { CloseHandle(snapshot); }
};
using Snapshot = std::unique_ptr<void, CloseSnapshot>;

// Tries again while what is looked at changes.
Snapshot Take(DWORD what, DWORD process) {
    HANDLE snapshot = INVALID_HANDLE_VALUE;
    for (int tries = 0; tries < 10 && snapshot == INVALID_HANDLE_VALUE; tries++) {
        snapshot = CreateToolhelp32Snapshot(what, process);
        if (snapshot == INVALID_HANDLE_VALUE && GetLastError() != ERROR_BAD_LENGTH) break;
    }
    return Snapshot(snapshot == INVALID_HANDLE_VALUE ? nullptr : snapshot);
}

bool HasLoadedFrom(const fs::path& folder, DWORD process) {
    const Snapshot modules = Take(TH32CS_SNAPMODULE | TH32CS_SNAPMODULE32, process);
    MODULEENTRY32W module{};
    module.dwSize = sizeof module;
    for (BOOL more = modules && Module32FirstW(modules.get(), &module); more;
         more = Module32NextW(modules.get(), &module)) {
        const fs::path file = module.szExePath;
        if (StrCmpIW(file.parent_path().c_str(), folder.c_str()) == 0 &&
            StrCmpIW(file.extension().c_str(), L".exe") != 0) {
            return true;
        }
    }
    return false;
}

}  // namespace

std::vector<RegisteredDriver> RegisteredDrivers() {
    std::vector<RegisteredDriver> drivers;
    for (const REGSAM view : {REGSAM{KEY_WOW64_32KEY}, REGSAM{KEY_WOW64_64KEY}}) {
        for (HKEY root : {HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE}) {
            const std::wstring identifier = TextOf(root, L"Tessmark.Corvane\\CLSID", view);
            const std::wstring file =
                identifier.empty() ? L"" : TextOf(root, L"CLSID\\" + identifier + L"\\InprocServer32", view);
            // On 32-bit Windows both views are the same.
            const bool hosts64 = view == REGSAM{KEY_WOW64_64KEY};
            const bool known = std::ranges::any_of(drivers, [&](const RegisteredDriver& each) {
                return each.File == file && each.OneUser == (root == HKEY_CURRENT_USER);
            });
            if (!file.empty() && !known) drivers.push_back({file, root == HKEY_CURRENT_USER, hosts64});
        }
    }
    return drivers;
}

bool RegisterDriver(const fs::path& component, bool thisUser) {
    const Loaded driver(component);
    if (!driver) ThrowNotLoaded(component, driver.Error());
    const auto install = driver.Get<HRESULT(WINAPI*)(BOOL, LPCWSTR)>("DllInstall");
    const auto registering = driver.Get<HRESULT(WINAPI*)()>("DllRegisterServer");
    if (install == nullptr || registering == nullptr) {
        throw Failure(ExitCode::NoDriver, Say("{} is not this driver.", platform::Utf8(component.native())));
    }
    CheckCall(thisUser ? install(TRUE, L"user") : registering(), "Registering the driver");
    const std::vector<RegisteredDriver> drivers = RegisteredDrivers();
    return !drivers.empty() && !drivers.front().OneUser;
}

void UnregisterDriver(const fs::path& component, bool thisUser) {
    try {
        (thisUser ? UnregisterForThisUser : Unregister)(component.native());
    } catch (const corvane::Failure& failure) {
        CheckCall(failure.Code, "Removing the driver's registration");
    }
}

std::vector<LoadedBy> ProgramsUsing(const fs::path& folder) {
    std::vector<LoadedBy> programs;
    const Snapshot processes = Take(TH32CS_SNAPPROCESS, 0);
    PROCESSENTRY32W process{};
    process.dwSize = sizeof process;
    for (BOOL more = processes && Process32FirstW(processes.get(), &process); more;
         more = Process32NextW(processes.get(), &process)) {
        if (process.th32ProcessID == GetCurrentProcessId() || !HasLoadedFrom(folder, process.th32ProcessID)) continue;
        programs.push_back({platform::Utf8(process.szExeFile), process.th32ProcessID});
    }
    return programs;
}

}  // namespace corvane::recorder
