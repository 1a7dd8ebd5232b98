// Finding and reading the scenario file: the one that the environment variable LTRSIM_SCENARIO names, else ltrsim.toml
// beside the simulated library (Windows) or in the current folder.
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "simulator/scenario.h"
#include "simulator/scenario_error.h"

#ifdef _WIN32
#include <windows.h>
#endif

namespace ltrsim {

namespace {

constexpr const char* FileName = "ltrsim.toml";

#ifdef _WIN32

constexpr DWORD PathSize = 32768;  // longest path and longest environment value of Windows

std::filesystem::path NamedByEnvironment() {
    std::wstring value(PathSize, L'\0');
    value.resize(GetEnvironmentVariableW(L"LTRSIM_SCENARIO", value.data(), PathSize));
    return value;
}

std::filesystem::path OwnFolder() {
    HMODULE library = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       reinterpret_cast<LPCWSTR>(&NamedByEnvironment), &library);
    std::wstring value(PathSize, L'\0');
    value.resize(GetModuleFileNameW(library, value.data(), PathSize));
    return std::filesystem::path(value).parent_path();
}

#else

std::filesystem::path NamedByEnvironment() {
    const char* value = std::getenv("LTRSIM_SCENARIO");
    return value ? value : "";
}

std::filesystem::path OwnFolder() {
    return std::filesystem::path();
}

#endif

}  // namespace

std::optional<std::string> LoadScenarioFile(std::string& path) {
    std::filesystem::path file = NamedByEnvironment();
    const bool named = !file.empty();
    if (!named) file = OwnFolder() / FileName;
    const std::u8string name = file.u8string();
    path.assign(name.begin(), name.end());
    std::ifstream stream(file, std::ios::binary);
    if (!stream) {
        std::error_code ignored;
        if (!named && !std::filesystem::exists(file, ignored)) return std::nullopt;
        throw ScenarioError(path + ":0: can't be opened");
    }
    std::string text{std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
    if (stream.bad()) throw ScenarioError(path + ":0: can't be read");
    return text;
}

}  // namespace ltrsim
