// What the component's file carries besides code: version record, texts, identifiers, icons.
#include <array>
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
    const std::array<DWORD, 6> expected = {0x00030002, 1, 0x00030002, 1, VOS__WINDOWS32, VFT_DLL};
    EXPECT_EQ(expected,
              (std::array<DWORD, 6>{numbers->dwFileVersionMS, numbers->dwFileVersionLS, numbers->dwProductVersionMS,
                                    numbers->dwProductVersionLS, numbers->dwFileOS, numbers->dwFileType}));
    ASSERT_TRUE(VerQueryValueW(record.data(), L"\\VarFileInfo\\Translation", &value, &size));
    EXPECT_EQ(4u, size);
    EXPECT_EQ(1200u << 16 | 0x409, *static_cast<DWORD*>(value));
    const std::wstring title = L"L-Card Corvane ADC Driver", version = L"3.02.0001";
    const std::pair<std::wstring, std::wstring> texts[] = {{L"Comments", title},
                                                           {L"FileDescription", title},
                                                           {L"ProductName", title},
                                                           {L"FileVersion", version},
                                                           {L"ProductVersion", version},
                                                           {L"InternalName", L"Corvane"},
                                                           {L"OriginalFilename", L"Corvane.adc"},
                                                           {L"OLESelfRegister", L""}};
    for (const auto& [name, text] : texts) {
        ASSERT_TRUE(VerQueryValueW(record.data(), (L"\\StringFileInfo\\040904B0\\" + name).c_str(), &value, &size))
            << std::string(name.begin(), name.end());
        EXPECT_EQ(text, static_cast<wchar_t*>(value));
    }
}

// Without a language of one's own the platform picks: Russian for Russian users, English for all others.
TEST_F(Resources, TextsFollowTheUsersLanguage) {
    const std::tuple<UINT, std::wstring_view, std::wstring_view> texts[] = {
        {21, L"Cancel", L"Отмена"},
        {22, L"Help", L"Справка"},
        {31, L"Clear", L"Очистить"},
        {38, L"Remove", L"Удалить"},
        {50, L"%1 Setup", L"Настройки %1"},
        {100, L"Connect LTR and run LTR-Server!", L"Подключите LTR крейт и запустите LTR Server!"},
        {150, L"Select IP Address", L"Выбор IP адреса"},
        {151, L"Please select IP address!", L"Пожалуйста укажите IP адрес!"},
        {400, L"Use START &Mark:", L"&Метка СТАРТ:"},
        {1110, L"Sync&hronization:", L"Син&хронизация:"},
        {2700, L"&Mezzanines:", L"Суб&модули:"},
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
        EXPECT_EQ(32, group[6]);
        EXPECT_EQ(16, group[6 + 14]);
        EXPECT_EQ(4, group[6 + 6]) << "bits a pixel";
        const HANDLE icon = LoadImageW(Module, name, IMAGE_ICON, 16, 16, 0);
        EXPECT_NE(nullptr, icon);
        DestroyIcon(static_cast<HICON>(icon));
    }
}

}  // namespace
}  // namespace corvane::test
