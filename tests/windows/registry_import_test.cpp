// What ExportKey writes, the platform's own registry editor takes back.
#include <filesystem>
#include <fstream>

#include "platform/ansi_text.h"
#include "settings/cRegistry.h"
#include "tests/registry/registry_stage.h"
#include "tests/windows/run_process.h"

namespace corvane::test {
namespace {

using namespace std::string_literals;

// Imports a text in the editor's ANSI form. True when the editor has ended within a minute, and well.
bool Import(const std::string& text) {
    wchar_t folder[MAX_PATH] = {};
    GetTempPathW(MAX_PATH, folder);
    const std::filesystem::path file = std::wstring(folder) + L"corvane_import.reg";
    std::ofstream(file, std::ios::binary) << "REGEDIT4\r\n" << platform::ToAnsi(text);
    const DWORD code = RunProcess(L"regedit.exe /S \"" + file.wstring() + L"\"", 60000);
    DeleteFileW(file.c_str());
    return code == 0;
}

using RegistryImport = RegistryStage;

TEST_F(RegistryImport, GivesTheExportedTreeBack) {
    const struct {
        std::string SubKey, Name;
        RawValue Stored;
        RawValue Imported;
    } values[] = {
        {"", "", {1, "default\0"s}, {1, "default\0"s}},
        {"", "text", {1, "C:\\\xD2\xEE\xEA\\x\0"s}, {1, "C:\\\xD2\xEE\xEA\\x\0"s}},
        {"", "\xC8\xEC\xFF [=] ", {1, "]=;\0"s}, {1, "]=;\0"s}},
        {"", "empty", {1, ""}, {1, "\0"s}},
        {"", "dword", {4, "\xFE\xFF\xFF\xFF"}, {4, "\xFE\xFF\xFF\xFF"}},
        {"", "binary", {3, "\0\xFF\x80"s}, {3, "\0\xFF\x80"s}},
        {"", "empty binary", {3, ""}, {3, ""}},
        {"", "long binary", {3, std::string(1000, '\x5A')}, {3, std::string(1000, '\x5A')}},
        {"a\\\xC1", "none", {0, "\1\2"}, {0, "\1\2"}},
        {"a\\\xC1", "qword", {11, "\1\2\3\4\5\6\7\x8"}, {11, "\1\2\3\4\5\6\7\x8"}},
        {"a\\\xC1", "unknown", {0x1234, "\1\2\3"}, {0x1234, "\1\2\3"}},
        // What an export loses: other texts than the first, the type of texts and of byte order, spaces around.
        {"b", "multiple", {7, "one\0two\0\0"s}, {1, "one\0"s}},
        {"b", "expandable", {2, "%PATH%\0"s}, {1, "%PATH%\0"s}},
        {"b", "big-endian", {5, "\1\2\3\4"}, {4, "\1\2\3\4"}},
        {"b", "spaces", {1, "  a b \0"s}, {1, "a b\0"s}},
        {"empty key", "", {1, ""}, {1, "\0"s}},
    };
    const auto keyOf = [](const std::string& subKey) { return subKey.empty() ? Stage : Stage + "\\" + subKey; };
    for (const auto& each : values) StoreRaw(keyOf(each.SubKey), each.Name, each.Stored.first, each.Stored.second);
    const std::string text = Registry.ExportKey(CurrentUser, Stage, true);
    DeleteTree(Stage);
    ASSERT_FALSE(Registry.KeyExists(CurrentUser, Stage));
    ASSERT_TRUE(Import(text));
    for (const auto& each : values) EXPECT_EQ(each.Imported, LoadRaw(keyOf(each.SubKey), each.Name)) << each.Name;
}

}  // namespace
}  // namespace corvane::test
