#include "recorder/setup/vendor_libraries.h"

#include <windows.h>
// windows.h first: the others build on it.
#include <shlobj.h>
#include <shlwapi.h>

#include <algorithm>

#include "platform/win32/wide_text.h"
#include "recorder/failure.h"
#include "recorder/file_system.h"
#include "recorder/messages.h"
#include "recorder/setup/file_version.h"

namespace corvane::recorder {
namespace {

namespace fs = std::filesystem;

constexpr int FoldersDeep = 3;  // below a maker's folder
constexpr wchar_t Installed[] = L"Software\\Microsoft\\Windows\\CurrentVersion\\Uninstall";

std::wstring Asked(UINT(WINAPI* function)(LPWSTR, UINT)) {
    wchar_t text[MAX_PATH];
    const UINT length = function(text, MAX_PATH);
    return std::wstring(text, length < MAX_PATH ? length : 0);
}

std::wstring Variable(const wchar_t* name) {
    std::wstring text(32768, L'\0');  // the longest there is
    text.resize(GetEnvironmentVariableW(name, text.data(), static_cast<DWORD>(text.size())));
    return text;
}

// Where Windows looks for a library of a component in this folder, in its order. The current folder is left out: a
// host's is not known.
std::vector<fs::path> FoldersBound(const fs::path& component) {
    std::vector<fs::path> folders = {component, Asked(GetSystemDirectoryW), Asked(GetWindowsDirectoryW)};
    const std::wstring path = Variable(L"PATH");
    for (size_t at = 0; at < path.size();) {
        const size_t end = std::min(path.find(L';', at), path.size());
        if (end > at) folders.emplace_back(path.substr(at, end - at));
        at = end + 1;
    }
    return folders;
}

// Folders that installed programs name as theirs.
void AddInstalled(HKEY root, REGSAM view, std::vector<fs::path>& folders) {
    HKEY programs = nullptr;
    if (RegOpenKeyExW(root, Installed, 0, KEY_READ | view, &programs) != ERROR_SUCCESS) return;
    wchar_t name[256];
    DWORD length = 256;
    for (DWORD i = 0; RegEnumKeyExW(programs, i, name, &length, nullptr, nullptr, nullptr, nullptr) == ERROR_SUCCESS;
         i++) {
        wchar_t folder[MAX_PATH] = L"";
        DWORD size = sizeof folder;
        if (SHGetValueW(programs, name, L"InstallLocation", nullptr, folder, &size) == ERROR_SUCCESS && *folder != 0) {
            folders.emplace_back(folder);
        }
        length = 256;
    }
    RegCloseKey(programs);
}

void AddBelow(const fs::path& folder, int deep, std::vector<fs::path>& folders) {
    std::error_code error;
    for (fs::directory_iterator each(folder, fs::directory_options::skip_permission_denied, error), end;
         !error && each != end; each.increment(error)) {
        std::error_code unreadable;
        if (!each->is_directory(unreadable)) continue;
        folders.push_back(each->path());
        if (deep > 1) AddBelow(each->path(), deep - 1, folders);
    }
}

// Where the server software may have put the libraries: what is installed, and the maker's folder among the programs.
std::vector<fs::path> FoldersOfPrograms() {
    std::vector<fs::path> folders;
    for (HKEY root : {HKEY_LOCAL_MACHINE, HKEY_CURRENT_USER}) {
        for (const REGSAM view : {REGSAM{KEY_WOW64_32KEY}, REGSAM{KEY_WOW64_64KEY}}) AddInstalled(root, view, folders);
    }
    const size_t installed = folders.size();
    for (size_t i = 0; i < installed; i++) {
        for (const wchar_t* below : {L"bin", L"lib", L"x86", L"win32"}) folders.push_back(folders[i] / below);
    }
    for (const wchar_t* programs : {L"ProgramFiles", L"ProgramFiles(x86)", L"ProgramW6432"}) {
        const std::wstring folder = Variable(programs);
        if (!folder.empty()) AddBelow(fs::path(folder) / L"L-Card", FoldersDeep, folders);
    }
    return folders;
}

}  // namespace

Image ImageOfFile(const fs::path& file) {
    std::vector<uint8_t> head(ImageHeadBytes);
    std::FILE* opened = OpenForReading(platform::Utf8(file.native()));
    if (opened == nullptr) return Image::None;
    head.resize(std::fread(head.data(), 1, head.size(), opened));
    std::fclose(opened);
    return ImageOf(head);
}

std::vector<VendorLibrary> FindVendorLibrary(const std::wstring& name, const fs::path& component) {
    std::vector<VendorLibrary> found;
    const auto look = [&](const std::vector<fs::path>& folders, bool bound) {
        for (const fs::path& folder : folders) {
            std::error_code error;
            const fs::path file = folder / name;
            if (folder.empty() || !fs::is_regular_file(file, error)) continue;
            const auto same = [&](const VendorLibrary& each) { return fs::equivalent(each.File, file, error); };
            if (std::ranges::any_of(found, same)) continue;
            found.push_back({file, ImageOfFile(file), VersionOf(file.native()).Simulated, bound});
        }
    };
    look(FoldersBound(component), true);
    look(FoldersOfPrograms(), false);
    return found;
}

bool IsWorthCopying(const VendorLibrary& library) {
    return library.Kind == Image::Windows32 && !library.Simulated;
}

MissingLibraries FindMissingLibraries(const fs::path& component) {
    MissingLibraries missing;
    for (const wchar_t* name : VendorLibraryNames) {
        const std::vector<VendorLibrary> found = FindVendorLibrary(name, component);
        const auto bound = std::ranges::find_if(found, &VendorLibrary::Bound);
        if (bound != found.end() && bound->Kind == Image::Windows32) continue;
        if (!missing.Reason.empty()) missing.Reason += '\n';
        if (bound == found.end()) {
            missing.Reason += Say("{} is missing.", platform::Utf8(name));
        } else {
            const std::string file = platform::Utf8(bound->File.native());
            missing.Reason += bound->Kind == Image::None ? Say("{} is no library: it is damaged.", file)
                                                         : Say("{} is not a 32-bit library.", file);
        }
        const auto elsewhere = std::ranges::find_if(found, IsWorthCopying);
        if (elsewhere != found.end()) {
            missing.Reason += ' ' + Say("A 32-bit one is {}.", platform::Utf8(elsewhere->File.native()));
        }
    }
    missing.Remedy = Say(
        "Both libraries of the LTR server software, 32-bit, must lie beside Corvane.adc: in {}. Install that software; "
        "ltr27rec driver --copy-libraries copies them where it finds them.",
        platform::Utf8(component.native()));
    return missing;
}

std::vector<fs::path> CopyVendorLibraries(const fs::path& component) {
    std::vector<fs::path> copied;
    for (const wchar_t* name : VendorLibraryNames) {
        const std::vector<VendorLibrary> found = FindVendorLibrary(name, component);
        const fs::path target = component / name;
        std::error_code error;
        if (fs::exists(target, error)) continue;  // whatever it is, somebody has put it there
        const auto from = std::ranges::find_if(found, IsWorthCopying);
        if (from == found.end()) continue;
        if (!fs::copy_file(from->File, target, error)) {
            throw Failure(ExitCode::Output, Say("{} can't be copied to {}: {}.", platform::Utf8(from->File.native()),
                                                platform::Utf8(target.native()), error.message()));
        }
        copied.push_back(target);
    }
    return copied;
}

}  // namespace corvane::recorder
