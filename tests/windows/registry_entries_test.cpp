// Registration by the platform's own regsvr32: the whole registry before, between and after.
#include <shlwapi.h>

#include <set>
#include <sstream>
#include <utility>

#include "tests/registry/registry_stage.h"
#include "tests/windows/com_host.h"

namespace corvane::test {
namespace {

// A line for each key and each value, in small letters, as the registry doesn't tell them apart.
using Snapshot = std::set<std::wstring>;

std::wstring Small(std::wstring text) {
    CharLowerBuffW(text.data(), static_cast<DWORD>(text.size()));
    return text;
}

// Adds what stands below `name` of `parent` under the name `path`.
void Add(HKEY parent, const std::wstring& name, const std::wstring& path, Snapshot& lines) {
    HKEY key = nullptr;
    if (RegOpenKeyExW(parent, name.c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS) return;
    lines.insert(Small(path));
    static std::vector<wchar_t> child(16384);
    static std::vector<BYTE> data(1 << 20);
    DWORD keys = 0, values = 0;
    RegQueryInfoKeyW(key, nullptr, nullptr, nullptr, &keys, nullptr, nullptr, &values, nullptr, nullptr, nullptr,
                     nullptr);
    for (DWORD i = 0; i < values; i++) {
        DWORD length = 16384, type = 0, size = 1 << 20;
        if (RegEnumValueW(key, i, child.data(), &length, nullptr, &type, data.data(), &size) != ERROR_SUCCESS) break;
        std::wstring text(reinterpret_cast<wchar_t*>(data.data()), size / 2);
        while (text.ends_with(L'\0')) text.pop_back();
        lines.insert(Small(path + L"|" + child.data() + L"|" + text));
    }
    for (DWORD i = 0; i < keys && RegEnumKeyW(key, i, child.data(), 16384) == ERROR_SUCCESS; i++) {
        Add(key, child.data(), path + L"\\" + child.data(), lines);
    }
    RegCloseKey(key);
}

Snapshot TakeSnapshot() {
    Snapshot lines;
    Add(HKEY_LOCAL_MACHINE, L"Software", L"HKLM", lines);
    Add(HKEY_CURRENT_USER, L"", L"HKCU", lines);
    return lines;
}

// Lines of `of` that `without` has not.
Snapshot Difference(const Snapshot& of, const Snapshot& without) {
    Snapshot lines;
    std::set_difference(of.begin(), of.end(), without.begin(), without.end(), std::inserter(lines, lines.end()));
    return lines;
}

Snapshot ValuesOf(Snapshot lines) {
    std::erase_if(lines, [](const std::wstring& line) { return line.find(L'|') == std::wstring::npos; });
    return lines;
}

DWORD RegSvr32(const std::wstring& options, const std::wstring& file) {
    return RunProcess(L"regsvr32 /s " + options + L" \"" + file + L"\"", 30000);
}

// A copy of the component with its vendor libraries, in a folder beside `stage` whose name has spaces, and Cyrillic
// letters where the file system takes them.
std::wstring CopyOfComponent() {
    const std::wstring source = ComponentPath().substr(0, ComponentPath().rfind(L'\\'));
    std::wstring folder = source + L"\\..\\LTR 27 драйвер";
    if (!CreateDirectoryW(folder.c_str(), nullptr) && GetLastError() != ERROR_ALREADY_EXISTS) {
        CreateDirectoryW((folder = source + L"\\..\\LTR 27 driver").c_str(), nullptr);
    }
    for (const wchar_t* file : {L"\\Corvane.adc", L"\\ltrapi.dll", L"\\ltr27api.dll"}) {
        EXPECT_TRUE(CopyFileW((source + file).c_str(), (folder + file).c_str(), FALSE)) << GetLastError();
    }
    wchar_t path[MAX_PATH] = {};
    GetFullPathNameW((folder + L"\\Corvane.adc").c_str(), MAX_PATH, path, nullptr);
    return path;
}

// The file's own path and folder stand in the list as FILE and FOLDER.
Snapshot ExpectedValues(const std::wstring& path) {
    Snapshot values;
    std::istringstream lines(TestData("registry_values.txt"));
    for (std::string line; std::getline(lines, line);) {
        std::wstring value(line.begin(), line.end());
        if (const size_t at = value.find(L"FILE"); at < value.size()) value.replace(at, 4, path);
        if (value.ends_with(L"FOLDER")) value.replace(value.size() - 6, 6, path, 0, path.rfind(L'\\'));
        values.insert(Small(value));
    }
    return values;
}

class RegistryEntries : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        const Apartment apartment;
        RegSvr32(L"", ComponentPath());
        EXPECT_NE(nullptr, CreateDriver()) << "leaves its settings, which are no part of the registration";
        CoFreeUnusedLibrariesEx(0, 0);
        RegSvr32(L"/u", ComponentPath());
        // Every user of Windows has this key; a fresh Wine prefix has not.
        HKEY classes = nullptr;
        RegCreateKeyW(HKEY_CURRENT_USER, L"Software\\Classes", &classes);
        RegCloseKey(classes);
        Before = TakeSnapshot();
        ASSERT_GT(Before.size(), 100u) << "the registry was not read";
    }
    void TearDown() override {
        const Snapshot before = std::exchange(Before, TakeSnapshot());
        EXPECT_EQ(Snapshot(), Difference(Before, before));
        EXPECT_EQ(Snapshot(), Difference(before, Before));
    }

    Apartment Com;
    static inline Snapshot Before;  // taken once for all tests, as it takes seconds
};

TEST_F(RegistryEntries, AreMadeAndRemovedFromAnyFolder) {
    const std::wstring elsewhere = CopyOfComponent();
    for (const std::wstring& path : {ComponentPath(), elsewhere, elsewhere}) {
        ASSERT_EQ(0u, RegSvr32(L"", path));
        EXPECT_EQ(ExpectedValues(path), ValuesOf(Difference(TakeSnapshot(), Before)));
        EXPECT_NE(nullptr, CreateDriver());
        CoFreeUnusedLibrariesEx(0, 0);
    }
    EXPECT_EQ(0u, RegSvr32(L"/u", elsewhere));
    EXPECT_EQ(nullptr, CreateDriver());
    EXPECT_EQ(0u, RegSvr32(L"/u", elsewhere)) << "nothing left to remove is no failure";
}

// Below a key that is gone at the next start the platform makes no lasting ones.
TEST_F(RegistryEntries, AreTakenBackWhenOneFails) {
    HKEY passing = nullptr;
    constexpr wchar_t Key[] = L"Software\\Classes\\Interface\\{FAC99029-3AFF-4FAD-A83E-C416F40B48B6}";
    ASSERT_EQ(ERROR_SUCCESS, RegCreateKeyExW(HKEY_LOCAL_MACHINE, Key, 0, nullptr, REG_OPTION_VOLATILE, KEY_WRITE,
                                             nullptr, &passing, nullptr));
    RegSetValueExW(passing, nullptr, 0, REG_SZ, reinterpret_cast<const BYTE*>(L"old"), 8);
    RegCloseKey(passing);
    EXPECT_EQ(HRESULT_FROM_WIN32(ERROR_CHILD_MUST_BE_VOLATILE), LoadedComponent().Call("DllRegisterServer"));
    EXPECT_TRUE(TakeSnapshot().contains(Small(std::wstring(Key).replace(0, 8, L"HKLM") + L"||old")));
    RegDeleteKeyW(HKEY_LOCAL_MACHINE, Key);
}

// Stands in for a machine whose user is no administrator: there is a key that he may read only.
TEST_F(RegistryEntries, AreTheUsersOwnWhereOnlyHeMayWrite) {
    HKEY machine = nullptr;
    const std::string path = "Software\\CorvaneTestMachine", denied = path + "\\Software\\Classes\\Tessmark.Corvane";
    ASSERT_EQ(ERROR_SUCCESS, RegCreateKeyA(HKEY_CURRENT_USER, denied.c_str(), &machine));
    RegCloseKey(machine);
    DenyRights(denied, KEY_SET_VALUE);
    ASSERT_EQ(ERROR_SUCCESS, RegOpenKeyA(HKEY_CURRENT_USER, path.c_str(), &machine));
    ASSERT_EQ(ERROR_SUCCESS, RegOverridePredefKey(HKEY_LOCAL_MACHINE, machine));
    const HRESULT registered = LoadedComponent().Call("DllRegisterServer");
    Snapshot own;
    Add(HKEY_CURRENT_USER, L"", L"HKCU", own);
    const HRESULT unregistered = LoadedComponent().Call("DllUnregisterServer");
    RegOverridePredefKey(HKEY_LOCAL_MACHINE, nullptr);
    RegCloseKey(machine);
    SHDeleteKeyA(HKEY_CURRENT_USER, path.c_str());
    EXPECT_TRUE(registered == S_OK && unregistered == S_OK);
    Snapshot expected;
    for (std::wstring value : ExpectedValues(ComponentPath())) expected.insert(value.replace(0, 4, L"hkcu\\software"));
    EXPECT_EQ(Snapshot(), Difference(expected, own));
}

// Key, value's name and text of a registration beside ours, below Software\Classes.
using HostEntry = std::tuple<std::wstring, const wchar_t*, std::wstring>;

const std::wstring HostLibraryKey = L"TypeLib\\{97B526A7-3B46-11D7-B688-FDAEA8668E28}";
const std::wstring HostInterfaceKey = L"Interface\\{97B526A8-3B46-11D7-B688-FDAEA8668E28}";
const std::wstring OtherId = L"{11111111-2222-3333-4444-555555555555}";

void Write(HKEY root, const std::vector<HostEntry>& entries) {
    for (const auto& [key, name, text] : entries) {
        SHSetValueW(root, (L"Software\\Classes\\" + key).c_str(), name, REG_SZ, text.c_str(),
                    static_cast<DWORD>(text.size()) * 2 + 2);
    }
}

// What stands in these two keys of the host's.
Snapshot HostSnapshot(HKEY root) {
    Snapshot lines;
    for (const std::wstring& key : {HostLibraryKey, HostInterfaceKey})
        Add(root, L"Software\\Classes\\" + key, key, lines);
    return lines;
}

void DeleteHost(HKEY root) {
    for (const std::wstring& key : {HostLibraryKey, HostInterfaceKey, L"TypeLib\\" + OtherId}) {
        SHDeleteKeyW(root, (L"Software\\Classes\\" + key).c_str());
    }
    RegDeleteKeyW(HKEY_CURRENT_USER, L"Software\\Classes\\TypeLib");  // stays unless it is empty
}

TEST_F(RegistryEntries, OfTheHostStay) {
    const std::wstring ourFile = HostLibraryKey + L"\\1.0\\0\\win32", file = L"C:\\host\\ADCInterface3.tlb";
    const std::wstring typeLib = HostInterfaceKey + L"\\TypeLib";
    const std::wstring moved = L"Z:\\Moved\\Corvane.adc\\2", ours = Small(ourFile + L"||" + ComponentPath() + L"\\2");
    const std::pair<std::string, std::vector<HostEntry>> cases[] = {
        {"the same place", {{ourFile, nullptr, file}, {HostInterfaceKey, nullptr, L"the host's"}}},
        {"another language", {{HostLibraryKey + L"\\1.0\\409\\win32", nullptr, file}}},
        {"another version", {{HostLibraryKey + L"\\1.1\\0\\win32", nullptr, file}, {typeLib, L"Version", L"1.1"}}},
        {"64 bits", {{HostLibraryKey + L"\\1.0\\0\\win64", nullptr, file}}},
        {"a proxy of its own", {{HostInterfaceKey + L"\\ProxyStubClsid32", nullptr, OtherId}}},
        {"another library",
         {{L"TypeLib\\" + OtherId + L"\\2.0\\0\\win32", nullptr, file},
          {typeLib, nullptr, OtherId},
          {typeLib, L"Version", L"2.0"}}},
        {"one user", {{HostLibraryKey + L"\\1.0\\409\\win32", nullptr, file}}},
    };
    for (const auto& [name, entries] : cases) {
        const HKEY root = name == "one user" ? HKEY_CURRENT_USER : HKEY_LOCAL_MACHINE;
        for (const bool hostFirst : {true, false}) {
            SCOPED_TRACE(name + (hostFirst ? ", before us" : ", after us"));
            if (!hostFirst) {
                ASSERT_EQ(S_OK, LoadedComponent().Call("DllRegisterServer"));
                Write(HKEY_LOCAL_MACHINE, {{ourFile, nullptr, moved}});
            }
            Write(root, entries);
            Snapshot host = HostSnapshot(root);
            ASSERT_EQ(S_OK, LoadedComponent().Call("DllRegisterServer"));
            if (host.erase(Small(ourFile + L"||" + moved)) == 1) host.insert(ours);
            EXPECT_EQ(host, HostSnapshot(root)) << "our own path is renewed, and nothing else";
            ASSERT_EQ(S_OK, LoadedComponent().Call("DllUnregisterServer"));
            const Snapshot left = HostSnapshot(root), lost = Difference(host, left);
            EXPECT_EQ(Snapshot(), Difference(left, host));
            EXPECT_TRUE(!hostFirst || lost.empty());
            // Our file goes, with the keys that are empty then; with no file of the host's in the version, all of that.
            const bool shared = std::get<0>(entries[0]).starts_with(HostLibraryKey + L"\\1.0");
            const std::wstring mayGo = Small(HostLibraryKey + (shared ? L"\\1.0\\0" : L""));
            for (const std::wstring& line : lost) EXPECT_EQ(mayGo, line.substr(0, mayGo.size()));
            EXPECT_FALSE(left.contains(ours));
            DeleteHost(root);
        }
    }
}

// What an unfinished registration or removal has left is nobody's.
TEST_F(RegistryEntries, HalfRegistrationsAreRepaired) {
    const std::vector<HostEntry> cases[] = {
        {{HostInterfaceKey, nullptr, L"IADC3"}},
        {{HostInterfaceKey + L"\\TypeLib", nullptr, L"{97B526A7-3B46-11D7-B688-FDAEA8668E28}"},
         {HostInterfaceKey + L"\\TypeLib", L"Version", L"1.7"}},
        {{HostInterfaceKey + L"\\TypeLib", nullptr, OtherId}},
        {{HostInterfaceKey + L"\\TypeLib", nullptr, L"{B4598549-F4AF-4583-853E-DCB91FC0CDFD}"}},  // our own other
        {{HostLibraryKey + L"\\1.0\\FLAGS", nullptr, L"0"}, {HostLibraryKey + L"\\1.0\\0\\win32", nullptr, L""}},
        {{HostLibraryKey + L"\\1.0\\0\\win32", nullptr, L"Z:\\gone\\Corvane.adc\\2"}},
    };
    Snapshot expected;
    const std::wstring classes = L"hklm\\classes\\";
    for (const std::wstring& line : ExpectedValues(ComponentPath())) {
        for (const std::wstring& key : {HostLibraryKey, HostInterfaceKey}) {
            if (line.starts_with(classes + Small(key))) expected.insert(line.substr(classes.size()));
        }
    }
    for (const std::vector<HostEntry>& entries : cases) {
        Write(HKEY_LOCAL_MACHINE, entries);
        ASSERT_EQ(S_OK, LoadedComponent().Call("DllRegisterServer"));
        EXPECT_EQ(expected, ValuesOf(HostSnapshot(HKEY_LOCAL_MACHINE)));
        ASSERT_EQ(S_OK, LoadedComponent().Call("DllUnregisterServer"));
        EXPECT_EQ(Snapshot(), HostSnapshot(HKEY_LOCAL_MACHINE));
        DeleteHost(HKEY_LOCAL_MACHINE);
    }
}

}  // namespace
}  // namespace corvane::test
