// ltr27rec.exe as a user runs it: exit codes, words and files.
#include <filesystem>
#include <fstream>

#include "simulator/sequence.h"
#include "tests/windows/com_host.h"

namespace corvane::test {
namespace {

std::string Content(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

TEST(Recorder, CommandLinesEndWithTheirCodesAndWords) {
    ASSERT_EQ(S_OK, LoadedComponent().Call("DllRegisterServer"));
    const std::filesystem::path stage = std::filesystem::path(ComponentPath()).parent_path();
    const std::filesystem::path folder = stage / "recorder", scenario = folder / "scenario.toml";
    std::filesystem::remove_all(folder);
    std::filesystem::create_directory(folder);
    std::ofstream(scenario) << "speed = 1\n" << Server("127.0.0.1") << Crate("CRATE1", {1}) << Crate("CRATE2", {2});
    std::ofstream(folder / "old.csv") << "old";
    // As another recorder keeps its file until it is complete.
    const HANDLE kept = CreateFileW((folder / "kept.csv.part").c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr,
                                    CREATE_ALWAYS, 0, nullptr);
    std::ofstream(folder / "left.csv.part") << "left";
    const std::string advice = GetACP() == 1251 ? "" : "Language for non-Unicode programs: Russian";
    const bool russian = PRIMARYLANGID(GetUserDefaultUILanguage()) == LANG_RUSSIAN;
    // The arguments, the exit code and what is said: in English, unless they choose Russian or are left to the user.
    const std::tuple<std::wstring, DWORD, std::string> cases[] = {
        {L"list", 3, "--crate CRATE1\r\n  --crate CRATE2\r\n"},
        {L"list --crate CRATE2", 0, "LTR27 (SIMULATED): 16 channels"},
        {L"list --crate CRATE2", 0, "Library: Corvane.adc 3."},
        {L"list --crate CRATE2", 0, "ltr27api.dll 3.2.1 SIMULATED ("},
        {L"list --crate CRATE2", 0, advice},
        {L"list --server 127.0.0", 1, "--server 127.0.0: give an address"},
        {L"list --lang ru --crate CRATE2", 0, "LTR27 (ИМИТАЦИЯ): 16 каналов, разрядов: 15"},
        {L"doctor --user", 1, russian ? "Лишний аргумент: --user\r\n" : "not expected: --user\r\n"},
        {L"monitor --crate CRATE2", 1, "standard output is none"},
        {L"monitor --crate CRATE2 -r 1000 -c 0 --once", 0, "\r\nEverything measured.\r\nNo Name "},
        {L"reord", 1, "no command \"reord\""},
        {L"-o old.csv -p .\\OLD.CSV", 1, "are one file"},
        {L"-o kept.csv", 5, "Another recorder is writing kept.csv"},
        {L"-o no\\a.csv", 5, "can't be created"},
        {L"-o left.csv", 0, "now in left.csv.part.1"},
        {L"-o - -c 0", 0, "\r\n0.199,"},
        {L"-o old.csv", 0, "old.csv: 200 kadrs of 14 channels"},
        {L"report old.csv -o old.html", 0, "old.html: 200 kadrs of 14 channels from old.csv, every sample"},
        {L"report old.csv -o .\\OLD.CSV", 1, "is the recording itself"}};
    SetEnvironmentVariableW(L"LTRSIM_SCENARIO", scenario.c_str());
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(folder);
    for (const auto& [arguments, code, said] : cases) {
        SECURITY_ATTRIBUTES inherited = {sizeof inherited, nullptr, TRUE};
        const HANDLE output = CreateFileW(L"output.txt", GENERIC_WRITE, FILE_SHARE_READ, &inherited, CREATE_ALWAYS,
                                          FILE_ATTRIBUTE_NORMAL, nullptr);
        const std::wstring recording = arguments.starts_with(L"-o") ? L"record --crate CRATE1 -r 1000 -d 200ms " : L"";
        const std::wstring program = stage.parent_path() / L"ltr27rec.exe";
        const std::wstring language = arguments == L"doctor --user" ? L"" : L"--lang en ";
        EXPECT_EQ(code, RunProcess(L"\"" + program + L"\" " + language + recording + arguments, 30000, output)) << said;
        CloseHandle(output);
        EXPECT_NE(std::string::npos, Content("output.txt").find(said)) << said << "\n" << Content("output.txt");
    }
    CloseHandle(kept);
    EXPECT_EQ("left", Content("left.csv.part.1"));
    EXPECT_FALSE(std::filesystem::exists("old.csv.part"));
    EXPECT_TRUE(Content("old.csv").starts_with("# Device: "));
    std::filesystem::current_path(before);
    SetEnvironmentVariableW(L"LTRSIM_SCENARIO", nullptr);
}

}  // namespace
}  // namespace corvane::test
