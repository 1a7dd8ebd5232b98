// What the component's file carries besides code: version record, texts, identifiers, icons. And what it needs.
#include <cstdlib>

#include "driver/com/identifiers.h"
#include "tests/windows/com_host.h"

namespace corvane::test {
namespace {

class Resources : public ::testing::Test {
protected:
    // Empty where there is no such resource.
    std::vector<BYTE> Bytes(const wchar_t* name, const wchar_t* type) {
        const HRSRC found = FindResourceW(Module, name, type);
        if (found == nullptr) return {};
        const BYTE* first = static_cast<const BYTE*>(LockResource(LoadResource(Module, found)));
        return {first, first + SizeofResource(Module, found)};
    }

    const LoadedComponent Component;
    const HMODULE Module = GetModuleHandleW(L"Corvane.adc");
};

TEST_F(Resources, VersionRecordDescribesTheFile) {
    std::vector<BYTE> record(GetFileVersionInfoSizeW(ComponentPath().c_str(), nullptr));
    ASSERT_TRUE(GetFileVersionInfoW(ComponentPath().c_str(), 0, static_cast<DWORD>(record.size()), record.data()));
    void* value = nullptr;
    UINT size = 0;
    ASSERT_TRUE(VerQueryValueW(record.data(), L"\\", &value, &size));
    const auto* numbers = static_cast<VS_FIXEDFILEINFO*>(value);
    const auto* first = &numbers->dwFileVersionMS;  // then come the masks of its flags, and what it is for
    EXPECT_EQ((std::vector<DWORD>{0x00030002, 1, 0x00030002, 1}), std::vector<DWORD>(first, first + 4));
    EXPECT_TRUE(numbers->dwFileOS == VOS__WINDOWS32 && numbers->dwFileType == VFT_DLL);
    ASSERT_TRUE(VerQueryValueW(record.data(), L"\\VarFileInfo\\Translation", &value, &size) && size == 4);
    EXPECT_EQ(1200u << 16 | 0x409, *static_cast<DWORD*>(value));
    std::wstring texts;
    for (const wchar_t* name : {L"Comments", L"FileDescription", L"ProductName", L"FileVersion", L"ProductVersion",
                                L"InternalName", L"OriginalFilename", L"OLESelfRegister"}) {
        const std::wstring path = std::wstring(L"\\StringFileInfo\\040904B0\\") + name;
        const bool there = VerQueryValueW(record.data(), path.c_str(), &value, &size);
        texts += there ? static_cast<wchar_t*>(value) + std::wstring(L"|") : L"none|";
    }
    const std::wstring title = L"L-Card Corvane ADC Driver|", version = L"3.02.0001|";
    EXPECT_EQ(title + title + title + version + version + L"Corvane|Corvane.adc||", texts);
}

// Without a language of one's own the platform picks: Russian for Russian users, English for all others.
TEST_F(Resources, TextsFollowTheUsersLanguage) {
    const std::tuple<UINT, std::wstring_view, std::wstring_view> texts[] = {
        {150, L"Select IP Address", L"Выбор IP адреса"},
#define CORVANE_TEXT(name, number, english, russian) {number, L##english, L##russian},
#include "resources/string_table.inc"
#undef CORVANE_TEXT
    };
    const WORD language = PRIMARYLANGID(GetUserDefaultUILanguage());
    // Wine takes the language from here: it has to be the one that was asked for.
    const std::string locale = std::getenv("LC_ALL") ? std::getenv("LC_ALL") : "";
    for (const auto& [asked, answer] : {std::pair{"ru", LANG_RUSSIAN}, {"de", LANG_GERMAN}, {"C.", LANG_ENGLISH}}) {
        ASSERT_TRUE(!locale.starts_with(asked) || answer == language) << locale;
    }
    for (const auto& [number, english, russian] : texts) {
        wchar_t text[100] = {};
        LoadStringW(Module, number, text, 100);
        EXPECT_EQ(language == LANG_RUSSIAN ? russian : english, text) << number;
    }
}

TEST_F(Resources, BothIdentifiersOfTheInterfaceFollowTheirSize) {
    const GUID identifiers[] = {EarlierCorvane, __uuidof(_Corvane)};
    std::vector<BYTE> expected = {sizeof identifiers, 0, 0, 0};
    const BYTE* bytes = reinterpret_cast<const BYTE*>(identifiers);
    expected.insert(expected.end(), bytes, bytes + sizeof identifiers);
    EXPECT_EQ(expected, Bytes(MAKEINTRESOURCEW(1), L"_IID_CORVANE"));
}

TEST_F(Resources, IconsComeInBothSizes) {
    const wchar_t* names[] = {MAKEINTRESOURCEW(1), L"ADC", MAKEINTRESOURCEW(2), MAKEINTRESOURCEW(3)};
    for (const wchar_t* name : names) {
        const std::vector<BYTE> group = Bytes(name, RT_GROUP_ICON);
        ASSERT_EQ(6u + 2 * 14, group.size());
        EXPECT_TRUE(group[6] == 32 && group[6 + 14] == 16 && group[6 + 6] == 4) << "pixels, and bits of each";
        const HANDLE icon = LoadImageW(Module, name, IMAGE_ICON, 16, 16, 0);
        EXPECT_NE(nullptr, icon);
        DestroyIcon(static_cast<HICON>(icon));
    }
}

// With a function that it can't find, the loader refuses the whole file. A new one comes into the list when Windows XP
// is known to have it.
TEST_F(Resources, NothingNewerThanWindowsXPIsImported) {
    const BYTE* file = reinterpret_cast<const BYTE*>(Module);
    const auto* header =
        reinterpret_cast<const IMAGE_NT_HEADERS*>(file + reinterpret_cast<const IMAGE_DOS_HEADER*>(file)->e_lfanew);
    const DWORD directory = header->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT].VirtualAddress;
    const auto* library = reinterpret_cast<const IMAGE_IMPORT_DESCRIPTOR*>(file + directory);
    const std::string known = TestData("functions_of_windows_xp.txt");
    size_t found = 0;
    for (; library->Name != 0; library++) {
        const std::string name = reinterpret_cast<const char*>(file + library->Name);
        if (name.starts_with("ltr")) continue;  // the vendor's
        const auto* entry = reinterpret_cast<const DWORD*>(file + library->OriginalFirstThunk);
        for (; *entry != 0; entry++, found++) {
            const std::string line = name + ' ' + reinterpret_cast<const char*>(file + *entry + sizeof(WORD)) + '\n';
            EXPECT_NE(std::string::npos, ('\n' + known).find('\n' + line)) << line;
        }
    }
    EXPECT_GT(found, 100u);
    // At another address in each process, and no code where data is.
    constexpr int Hardened = IMAGE_DLLCHARACTERISTICS_DYNAMIC_BASE | IMAGE_DLLCHARACTERISTICS_NX_COMPAT;
    EXPECT_EQ(Hardened, header->OptionalHeader.DllCharacteristics & Hardened);
    EXPECT_NE(0u, header->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_BASERELOC].Size);
}

}  // namespace
}  // namespace corvane::test
