// What ExportKey writes, the platform's own registry editor takes back.
#include <windows.h>

#include <fstream>

#include "platform/ansi_text.h"
#include "settings/cRegistry.h"
#include "tests/registry/registry_stage.h"

namespace corvane::test {
namespace {

using namespace std::string_literals;

// Imports a text in the editor's ANSI form. True when the editor has ended within a minute, and well.
bool Import(const std::string& text) {
    char folder[MAX_PATH] = {};
    GetTempPathA(MAX_PATH, folder);
    const std::string file = folder + "corvane_import.reg"s;
    std::ofstream(file, std::ios::binary) << "REGEDIT4\r\n" << platform::ToAnsi(text);
    std::string command = "regedit.exe /S \"" + file + "\"";
    STARTUPINFOA startup = {};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION process = {};
    if (!CreateProcessA(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &process)) {
        return false;
    }
    DWORD exitCode = 1;
    const bool ended = WaitForSingleObject(process.hProcess, 60000) == WAIT_OBJECT_0;
    if (ended) GetExitCodeProcess(process.hProcess, &exitCode);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    DeleteFileA(file.c_str());
    return ended && exitCode == 0;
}

class RegistryImport : public RegistryStage {};

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
        {"", "unterminated", {1, "abc"}, {1, "abc\0"s}},
        {"", "dword", {4, "\xFE\xFF\xFF\xFF"}, {4, "\xFE\xFF\xFF\xFF"}},
        {"", "binary", {3, "\0\xFF\x80"s}, {3, "\0\xFF\x80"s}},
        {"", "empty binary", {3, ""}, {3, ""}},
        {"", "long binary", {3, std::string(1000, '\x5A')}, {3, std::string(1000, '\x5A')}},
        {"a\\\xC1", "none", {0, "\1\2"}, {0, "\1\2"}},
        {"a\\\xC1", "empty none", {0, ""}, {0, ""}},
        {"a\\\xC1", "link", {6, "\1\2"}, {6, "\1\2"}},
        {"a\\\xC1", "resources", {8, "\1\2\3"}, {8, "\1\2\3"}},
        {"a\\\xC1", "descriptor", {9, "\1\2\3"}, {9, "\1\2\3"}},
        {"a\\\xC1", "requirements", {10, "\1\2\3"}, {10, "\1\2\3"}},
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
    const std::string text = cRegistry().ExportKey(CurrentUser, Stage, true);
    DeleteTree(Stage);
    ASSERT_FALSE(cRegistry().KeyExists(CurrentUser, Stage));
    ASSERT_TRUE(Import(text));
    for (const auto& each : values) EXPECT_EQ(each.Imported, LoadRaw(keyOf(each.SubKey), each.Name)) << each.Name;
}

}  // namespace
}  // namespace corvane::test
