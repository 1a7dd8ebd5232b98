// The two vendor libraries on this machine: Corvane.adc is bound to them, so that without them it can't be loaded at
// all.
#pragma once

#include <array>
#include <filesystem>
#include <string>
#include <vector>

#include "recorder/setup/image_file.h"

namespace corvane::recorder {

inline constexpr std::array VendorLibraryNames = {L"ltrapi.dll", L"ltr27api.dll"};

struct VendorLibrary {
    std::filesystem::path File;
    Image Kind = Image::None;
    bool Simulated = false;  // ours, for trying the driver without a crate
    bool Bound = false;      // lies where the system looks when it loads the driver from `component`'s folder
};

// None: it can't be read.
Image ImageOfFile(const std::filesystem::path& file);

// Every file called `name`: beside the component, where Windows looks for any library, and in the folders of programs
// that are installed here. In the order in which Windows would take them.
std::vector<VendorLibrary> FindVendorLibrary(const std::wstring& name, const std::filesystem::path& component);

// Whether it would serve the driver beside it: real, and 32-bit.
bool IsWorthCopying(const VendorLibrary& library);

struct MissingLibraries {
    std::string Reason;  // a line for each of them; empty: none is missing
    std::string Remedy;

    std::string Text() const { return Reason + '\n' + Remedy; }
};

// Why a driver in this folder can't be loaded as far as its libraries tell.
MissingLibraries FindMissingLibraries(const std::filesystem::path& component);

// Copies what is missing beside the component from where else it was found, real 32-bit libraries only. Returns the
// files that were copied. Throws Failure with ExitCode::Output.
std::vector<std::filesystem::path> CopyVendorLibraries(const std::filesystem::path& component);

}  // namespace corvane::recorder
