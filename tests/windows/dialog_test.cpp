// The four dialogs as a user has them: reached through the host's members, used with keyboard and mouse.
#include <windows.h>

#include <commctrl.h>
#include <sddl.h>
#include <shlwapi.h>

#include <cmath>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "tests/windows/dialog_host.h"

namespace corvane::test {
namespace {

// The first has the focus; from there the Tab key visits all of these and comes round.
void ExpectTabStops(DialogUser& user, const std::vector<HWND>& stops) {
    for (const HWND stop : stops) {
        EXPECT_EQ(stop, user.Focus()) << GetDlgCtrlID(stop);
        user.Press(VK_TAB);
    }
    EXPECT_EQ(stops[0], user.Focus());
}

TEST_F(Dialogs, AddressIsTypedAndRemembered) {
    Configure(Server("192.168.10.5") + Crate("3T000001", {7}));
    EXPECT_TRUE(TestWith(AddressTitle, [&](DialogUser& user) {
        EXPECT_FALSE(IsWindowEnabled(Host));
        HWND boxes[4];  // from left to right
        for (int i = 0; i < 4; i++) boxes[i] = user.Child(WC_EDITW, i);
        EXPECT_EQ(boxes[0], user.Focus());
        user.Type("45");
        EXPECT_EQ(L"45", TextOf(boxes[0])) << "what was there is selected and gives way";
        user.Click(boxes[0], 8, 5, 2);  // a double click takes the whole text
        user.Type("192");
        EXPECT_EQ(boxes[1], user.Focus()) << "the third digit moves on";
        user.Press(VK_DELETE);
        user.Type("16810");
        EXPECT_EQ(L"168", TextOf(boxes[1]));
        EXPECT_EQ(L"100", TextOf(boxes[2])) << "at the front of the box it moved on to";
        user.Press(VK_DELETE);
        for (const WORD dropped : std::initializer_list<WORD>{VK_OEM_PERIOD, 'X'}) user.Press(dropped);
        EXPECT_EQ(boxes[2], user.Focus());
        user.Press(VK_RIGHT);
        user.Press(VK_DELETE);
        user.Type("5");
        const std::pair<WORD, HWND> moves[] = {
            {VK_HOME, boxes[0]}, {VK_END, boxes[3]}, {VK_LEFT, boxes[3]}, {VK_LEFT, boxes[2]}};
        for (const auto& [key, box] : moves) {
            user.Press(key);
            EXPECT_EQ(box, user.Focus()) << key;
        }
        user.Press(VK_RETURN);
    }));
    EXPECT_EQ("192.168.10.5\r\n", FileText());
}

TEST_F(Dialogs, AddressesAreChosenRemovedAndRefused) {
    std::ofstream(ListFile(), std::ios::binary) << "10.0.0.5\r\n10.0.0.6\r\n10.0.0.7\r\n";
    Configure(Server("192.168.10.5"));
    EXPECT_FALSE(TestWith(AddressTitle, [](DialogUser& user) {
        const HWND list = user.Child(WC_LISTBOXW, 0), first = user.Child(WC_EDITW, 0), second = user.Child(WC_EDITW, 1);
        const HWND last = user.Child(WC_EDITW, 3), remove = user.Child(WC_BUTTONW, 1);
        EXPECT_EQ(1, SendMessageW(list, LB_GETCURSEL, 0, 0));
        ExpectTabStops(user, {first, second, user.Child(WC_EDITW, 2), last, list, user.Child(WC_BUTTONW, 0), remove,
                              user.Child(WC_BUTTONW, 2), user.Child(WC_BUTTONW, 3)});
        user.Click(list, 10, 5);
        EXPECT_EQ(L"127", TextOf(first));
        EXPECT_FALSE(IsWindowEnabled(remove));
        user.Press(VK_DOWN);
        EXPECT_EQ(L"5", TextOf(last));
        SendMessageW(list, LB_SETCURSEL, 2, 0);  // tells nobody
        user.Click(remove);
        EXPECT_EQ((std::vector<std::wstring>{L"127.0.0.1", L"10.0.0.5", L"10.0.0.7"}), ListLines(list));
        EXPECT_EQ(L"7", TextOf(last)) << "the one that moved into its place";
        user.Click(second);
        user.Press(VK_BACK);
        user.Press(VK_DELETE);
        user.Press(VK_RETURN);
        ASSERT_TRUE(user.WaitFront(L"LTR27"));
        EXPECT_EQ(SelectText, TextOf(GetDlgItem(GetForegroundWindow(), MessageTextId)));
        user.Press(VK_RETURN);
        EXPECT_TRUE(user.WaitFront(AddressTitle)) << "the dialog stays";
        EXPECT_EQ(second, user.Focus());
        user.Press(VK_ESCAPE);
    }));
    EXPECT_EQ(ConnectText, LastError(Driver.Get()));
    EXPECT_EQ("10.0.0.5\r\n10.0.0.7\r\n", FileText()) << "Esc keeps what was removed";
}

std::wstring ItemText(HWND tree, HTREEITEM item) {
    wchar_t text[128] = {};
    TVITEMW asked = {TVIF_TEXT, item, 0, 0, text, 128, 0, 0, 0, 0};
    SendMessageW(tree, TVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&asked));
    return text;
}

UINT ItemState(HWND tree, HTREEITEM item) {
    constexpr LPARAM Asked = TVIS_BOLD | TVIS_EXPANDED;
    return static_cast<UINT>(SendMessageW(tree, TVM_GETITEMSTATE, reinterpret_cast<WPARAM>(item), Asked) & Asked);
}

HTREEITEM Next(HWND tree, UINT relation, HTREEITEM item) {
    return reinterpret_cast<HTREEITEM>(SendMessageW(tree, TVM_GETNEXTITEM, relation, reinterpret_cast<LPARAM>(item)));
}

void ClickItem(DialogUser& user, HWND tree, HTREEITEM item) {
    RECT area = {};
    std::memcpy(&area, &item, sizeof(void*));  // the item asked for
    SendMessageW(tree, TVM_GETITEMRECT, TRUE, reinterpret_cast<LPARAM>(&area));
    user.Click(tree, (area.left + area.right) / 2, (area.top + area.bottom) / 2);
}

TEST_F(Dialogs, CrateIsChosenAmongSeveral) {
    Configure(Server("127.0.0.1") + Crate("FIRST", {3}) + Crate("SECOND", {12}));
    SetForegroundWindow(GetDesktopWindow());  // as when another program is in front
    EXPECT_FALSE(TestWith(DeviceTitle, [](DialogUser& user) {
        EXPECT_EQ(user.Dialog(), ActiveTitle);
        const HWND cancel = user.Child(WC_BUTTONW, 1);
        RECT area = {};
        POINT corner = {};
        GetClientRect(user.Dialog(), &area);
        MapWindowPoints(cancel, user.Dialog(), &corner, 1);
        EXPECT_GE(corner.x, area.right) << "Cancel is out of sight";
        EXPECT_NE(0, SendMessageW(user.Dialog(), WM_GETICON, ICON_SMALL, 0));
        PostMessageW(user.Dialog(), WM_CLOSE, 0, 0);
    }));
    EXPECT_TRUE(TestWith(DeviceTitle, [&](DialogUser& user) {
        const HWND tree = user.Child(WC_TREEVIEWW, 0);
        const HTREEITEM first = Next(tree, TVGN_ROOT, nullptr), second = Next(tree, TVGN_NEXT, first);
        const HTREEITEM module = Next(tree, TVGN_CHILD, second);
        EXPECT_EQ(UINT{TVIS_BOLD | TVIS_EXPANDED}, ItemState(tree, first));
        EXPECT_EQ(L"Slot 12 - LTR27", ItemText(tree, module));
        ClickItem(user, tree, module);
        EXPECT_EQ(UINT{TVIS_EXPANDED}, ItemState(tree, first));
        EXPECT_EQ(UINT{TVIS_BOLD | TVIS_EXPANDED}, ItemState(tree, second));
        user.Press(VK_TAB);
        for (const WORD key : std::initializer_list<WORD>{VK_RIGHT, VK_DOWN, VK_LEFT}) {
            user.Press(key);
            EXPECT_EQ(GetDlgItem(user.Dialog(), IDOK), user.Focus()) << "not on to the hidden Cancel";
        }
        user.Press(VK_RETURN);
    }));
    SettingWith([&](DialogUser& user) {
        const HWND tree = user.Child(WC_TREEVIEWW, 0);
        EXPECT_EQ(L"12. LTR27", ItemText(tree, Next(tree, TVGN_CHILD, Next(tree, TVGN_ROOT, nullptr))));
    });
}

TEST_F(Dialogs, SettingsAreShownAndChanged) {
    Configure(Server("127.0.0.1") + Crate("FIRST", {3}));
    ASSERT_TRUE(True(Driver.Get(), &IADC3::Test));
    SettingWith([](DialogUser& user) {
        const HWND tree = user.Child(WC_TREEVIEWW, 0), info = user.Child(WC_EDITW, 0);
        const HWND list = user.Child(WC_LISTBOXW, 0), combo = user.Child(WC_COMBOBOXW, 0);
        EXPECT_TRUE(ListLines(list).at(0).starts_with(L"03_SEQ\tv"));
        EXPECT_TRUE(TextOf(info).starts_with(L"Crate: LTR030\r\nCrate SN: FIRST")) << "the crate is described first";
        const HTREEITEM crate = Next(tree, TVGN_ROOT, nullptr);
        ClickItem(user, tree, Next(tree, TVGN_CHILD, crate));
        EXPECT_TRUE(TextOf(info).starts_with(L"Board: LTR27"));
        ClickItem(user, tree, crate);
        EXPECT_TRUE(TextOf(info).starts_with(L"Crate: LTR030"));
        user.Press(VK_LEFT);  // would collapse it
        EXPECT_EQ(UINT{TVIS_EXPANDED}, ItemState(tree, crate) & TVIS_EXPANDED);
        ExpectTabStops(user,
                       {tree, info, list, combo, GetDlgItem(user.Dialog(), IDOK), GetDlgItem(user.Dialog(), IDCANCEL)});
        // Two captions mark this letter, one a capital: the key goes from one to the next. Keyboards may not have it.
        const std::pair<wchar_t, HWND> marked[] = {{L'м', list}, {L'М', combo}};
        for (const auto& [letter, control] : marked) {
            PostMessageW(user.Focus(), WM_SYSCHAR, letter, KF_ALTDOWN << 16);
            EXPECT_TRUE(WaitFor([&, to = control] { return user.Focus() == to; }, 2000)) << GetDlgCtrlID(user.Focus());
        }
        EXPECT_FALSE(IsWindowEnabled(user.Child(WC_BUTTONW, 4))) << "there is no help file";
        user.Press(VK_F1);
        EXPECT_EQ(user.Dialog(), GetForegroundWindow());
        user.Click(combo, 8, 8);
        for (int i = 0; i < 5; i++) user.Press(VK_DOWN);
        user.Press(VK_RETURN);  // closes the list
        user.Press(VK_RETURN);
    });
    Driver.Reset();
    EXPECT_EQ(5u, StoredMode());
    Driver = CreateDriver();
    for (const WORD key : std::initializer_list<WORD>{VK_ESCAPE, VK_RETURN}) {
        SettingWith([key](DialogUser& user) {
            const HWND combo = user.Child(WC_COMBOBOXW, 0);
            EXPECT_EQ(5, SendMessageW(combo, CB_GETCURSEL, 0, 0)) << "Esc changes nothing";
            SendMessageW(combo, CB_SETCURSEL, 3, 0);  // tells nobody
            user.Press(key);
        });
    }
    Driver.Reset();
    EXPECT_EQ(3u, StoredMode());
}

void ExpectTextsFit(HWND control, int dpi) {
    const auto ask = [control](UINT message, WPARAM wParam = 0, const void* lParam = nullptr) {
        return SendMessageW(control, message, wParam, reinterpret_cast<LPARAM>(lParam));
    };
    wchar_t name[64] = {};
    GetClassNameW(control, name, 64);
    const std::wstring kind = name;
    const LONG style = GetWindowLongW(control, GWL_STYLE);
    RECT area = {}, outer = {};
    GetClientRect(control, &area);
    GetWindowRect(control, &outer);
    std::vector<std::wstring> texts = {TextOf(control)};
    if (kind == WC_LISTBOXW) {
        constexpr int Edges = 4;  // and no scroll bar
        EXPECT_EQ(outer.right - outer.left, area.right + Edges);
        EXPECT_EQ(outer.bottom - outer.top, area.bottom + Edges);
        EXPECT_GE(area.bottom, 8 * ask(LB_GETITEMHEIGHT));
        EXPECT_LE(ask(LB_GETHORIZONTALEXTENT), area.right);
        if ((style & LBS_USETABSTOPS) == 0) texts = ListLines(control);
    } else if (kind == WC_COMBOBOXW) {
        texts.clear();
        for (WPARAM i = 0; ask(CB_GETLBTEXT, i, name) > 0; i++) texts.push_back(name);
        EXPECT_EQ(8u, texts.size());
        EXPECT_NEAR(outer.bottom - outer.top, 21 * dpi / 96.0, 1);
        area.right -= GetSystemMetrics(SM_CXVSCROLL) + 6;
    } else if (kind == WC_EDITW) {
        if ((style & ES_MULTILINE) == 0) texts = {L"192"};
        EXPECT_TRUE((style & ES_MULTILINE) == 0 || ask(EM_GETLINECOUNT) == 4);
        ask(EM_GETRECT, 0, &area);  // within its margins
        OffsetRect(&area, -area.left, -area.top);
    } else if (kind == WC_TREEVIEWW) {
        int width = 0, height = 0;
        ImageList_GetIconSize(reinterpret_cast<HIMAGELIST>(ask(TVM_GETIMAGELIST, TVSIL_NORMAL)), &width, &height);
        EXPECT_EQ(std::pair(width, height), std::pair(dpi / 6, dpi / 6));
    }
    const HDC context = GetDC(control);
    SelectObject(context, reinterpret_cast<HGDIOBJ>(ask(WM_GETFONT)));
    for (const std::wstring& text : texts) {
        RECT taken = {};
        DrawTextW(context, text.c_str(), -1, &taken, DT_CALCRECT);
        const LONG emptyColumns = text == L"." ? 1 : 0;
        EXPECT_TRUE(taken.right - emptyColumns <= area.right && taken.bottom <= area.bottom)
            << std::string(text.begin(), text.end());
    }
    ReleaseDC(control, context);
}

// As when it is moved to a monitor of that resolution.
void ExpectLayout(HWND dialog, int width, int height) {
    constexpr UINT MonitorDpiChanged = 0x02E0;
    for (const int dpi : {120, 144, 192, 96}) {
        SCOPED_TRACE(dpi);
        const RECT place = {0, 0, 100, 100};
        SendMessageW(dialog, MonitorDpiChanged, static_cast<WPARAM>(dpi << 16 | dpi), reinterpret_cast<LPARAM>(&place));
        RECT area = {};
        GetClientRect(dialog, &area);
        EXPECT_EQ(std::pair(area.right, area.bottom),
                  std::pair(std::lround(width * dpi / 96.0), std::lround(height * dpi / 96.0)));
        for (HWND child = GetWindow(dialog, GW_CHILD); child != nullptr; child = GetWindow(child, GW_HWNDNEXT)) {
            SCOPED_TRACE(GetDlgCtrlID(child));
            if (IsWindowVisible(child)) ExpectTextsFit(child, dpi);
        }
    }
}

TEST_F(Dialogs, AreAsLargeAsDesignedAndHoldTheirTexts) {
    const std::tuple<WORD, const wchar_t*, const wchar_t*> languages[] = {
        {LANG_RUSSIAN, AddressTitle, SetupTitle}, {LANG_ENGLISH, L"Select IP Address", L"LTR27 Setup (v3.2.1)"}};
    for (const auto& [language, addressTitle, setupTitle] : languages) {
        SetThreadLocale(MAKELANGID(language, SUBLANG_DEFAULT));
        std::ofstream(ListFile(), std::ios::binary) << "222.222.222.222\r\n";
        Configure(Server("222.222.222.222") + Crate("3T000001", {3}) + Crate("3T000002", {12}));
        EXPECT_TRUE(TestWith(addressTitle, [](DialogUser& user) {
            ExpectLayout(user.Dialog(), 224, 200);
            user.Press(VK_RETURN);
            ASSERT_TRUE(user.WaitFront(L"Select Device - IP: 222.222.222.222"));
            ExpectLayout(GetForegroundWindow(), 214, 225);
            user.Press(VK_RETURN);
        }));
        SettingWith([](DialogUser& user) { ExpectLayout(user.Dialog(), 314, 298); }, setupTitle);
        Driver.Reset();
        Driver = CreateDriver();
    }
    SetThreadLocale(GetUserDefaultLCID());
}

TEST_F(Dialogs, ASavedListKeepsItsProtection) {
    constexpr SECURITY_INFORMATION Kind = DACL_SECURITY_INFORMATION;
    const auto rights = [] {
        BYTE descriptor[1024] = {};
        DWORD size = 0;
        char* text = nullptr;
        EXPECT_TRUE(GetFileSecurityA(ListFile().c_str(), Kind, descriptor, sizeof descriptor, &size));
        ConvertSecurityDescriptorToStringSecurityDescriptorA(descriptor, SDDL_REVISION_1, Kind, &text, nullptr);
        const std::string copy = text;
        LocalFree(text);
        return copy;
    };
    const auto removeFirst = [this] {
        EXPECT_FALSE(TestWith(AddressTitle, [](DialogUser& user) {
            user.Click(user.Child(WC_BUTTONW, 1));
            user.Press(VK_ESCAPE);
        }));
    };
    const std::string beside = ListFile() + ".new", other = ListFile() + ".other";
    Configure(Server("192.168.10.5"));
    for (const bool nameBesideIsFree : {true, false}) {
        std::ofstream(ListFile(), std::ios::binary) << "10.0.0.5\r\n10.0.0.6\r\n";
        const std::string others = rights(), fewer = others.substr(0, others.rfind('('));
        PSECURITY_DESCRIPTOR descriptor = nullptr;
        ConvertStringSecurityDescriptorToSecurityDescriptorA(fewer.c_str(), SDDL_REVISION_1, &descriptor, nullptr);
        EXPECT_TRUE(SetFileSecurityA(ListFile().c_str(), Kind, descriptor));
        LocalFree(descriptor);
        EXPECT_TRUE(SetFileAttributesA(ListFile().c_str(), FILE_ATTRIBUTE_HIDDEN));
        EXPECT_TRUE(nameBesideIsFree || CreateDirectoryA(beside.c_str(), nullptr));
        removeFirst();
        EXPECT_EQ("10.0.0.6\r\n", FileText()) << nameBesideIsFree;
        EXPECT_EQ(fewer, rights()) << nameBesideIsFree << ", not " << others;
        EXPECT_NE(0u, GetFileAttributesA(ListFile().c_str()) & FILE_ATTRIBUTE_HIDDEN) << nameBesideIsFree;
        std::remove(ListFile().c_str());
    }
    for (const bool nameBesideIsFree : {false, true}) {  // the list is a second name of somebody's file
        std::ofstream(other, std::ios::binary) << "10.0.0.5\r\n10.0.0.6\r\n";
        EXPECT_TRUE(CreateHardLinkA(ListFile().c_str(), other.c_str(), nullptr));
        removeFirst();
        EXPECT_EQ(nameBesideIsFree ? "10.0.0.6\r\n" : "10.0.0.5\r\n10.0.0.6\r\n", FileText());
        EXPECT_EQ(20u, std::filesystem::file_size(other)) << nameBesideIsFree << ": it stays as it was";
        for (const std::string& each : {ListFile(), other}) std::remove(each.c_str());
        RemoveDirectoryA(beside.c_str());
    }
}

LRESULT CALLBACK RefuseWindows(int code, WPARAM wParam, LPARAM lParam) {
    return code == HCBT_CREATEWND ? 1 : CallNextHookEx(nullptr, code, wParam, lParam);
}

TEST_F(Dialogs, OneThatCanNotBeMadeFailsTheTest) {
    Configure(Server("192.168.10.5"));
    const HHOOK hook = SetWindowsHookExW(WH_CBT, RefuseWindows, nullptr, GetCurrentThreadId());
    EXPECT_FALSE(True(Driver.Get(), &IADC3::Test));
    UnhookWindowsHookEx(hook);
    EXPECT_TRUE(LastError(Driver.Get()).starts_with(std::wstring(L"Error: ") + AddressTitle + L": "));
}

// The guide where there is no vendor's help file.
TEST_F(Dialogs, HelpThatCannotBeOpenedIsReported) {
    const std::string folder = ListFile().substr(0, ListFile().rfind('\\') + 1), guide = folder + "guide";
    const std::string hidden = folder + "LCardA.chm";  // is no ordinary file
    CreateDirectoryA(guide.c_str(), nullptr);
    for (const std::string& file : {folder + "LCardTest.chm", guide + "\\guide.ru.html"}) {
        for (const std::string& each : {hidden, file}) std::ofstream(each) << "no help";
        EXPECT_TRUE(SetFileAttributesA(hidden.c_str(), FILE_ATTRIBUTE_HIDDEN));
        Driver.Reset();
        Driver = CreateDriver();  // the first object looks for the file
        for (const std::string& each : {hidden, file}) EXPECT_TRUE(DeleteFileA(each.c_str()));
        SettingWith([&](DialogUser& user) {
            EXPECT_TRUE(IsWindowEnabled(user.Child(WC_BUTTONW, 4))) << file;
            user.Press(VK_F1);
            const std::wstring name(file.begin() + static_cast<ptrdiff_t>(file.rfind('\\') + 1), file.end());
            const auto names = [&](HWND message) {
                return TextOf(GetDlgItem(message, MessageTextId)).find(name) != std::wstring::npos;
            };
            EXPECT_TRUE(WaitFor([&] { return names(GetForegroundWindow()); }, 5000)) << file;
            user.Press(VK_RETURN);
            user.Press(VK_ESCAPE);
        });
    }
    RemoveDirectoryA(guide.c_str());
}

// The user's browser is a program here that writes a file beside the page.
TEST_F(Dialogs, HelpOpensTheGuide) {
    constexpr wchar_t Type[] = L"CorvaneTestPage";
    const std::wstring folder = std::filesystem::path(ComponentPath()).parent_path() / L"guide";
    const std::wstring page = folder + L"\\guide.ru.html", opened = page + L".opened";
    const auto store = [](const std::wstring& key, const std::wstring& text) {
        const size_t bytes = (text.size() + 1) * sizeof(wchar_t);
        SHSetValueW(HKEY_CLASSES_ROOT, key.c_str(), nullptr, REG_SZ, text.c_str(), static_cast<DWORD>(bytes));
    };
    wchar_t usual[100] = {};
    DWORD size = sizeof usual;
    SHGetValueW(HKEY_CLASSES_ROOT, L".html", nullptr, nullptr, usual, &size);
    store(L".html", Type);
    store(std::wstring(Type) + L"\\shell\\open\\command",
          std::wstring(L"regedit.exe /E \"%1.opened\" HKEY_CLASSES_ROOT\\") + Type);
    CreateDirectoryW(folder.c_str(), nullptr);
    std::ofstream(std::filesystem::path(page)) << "the guide";
    Driver.Reset();
    Driver = CreateDriver();
    SettingWith([&](DialogUser& user) {
        user.Click(user.Child(WC_BUTTONW, 4));
        EXPECT_TRUE(WaitFor([&] { return std::filesystem::exists(opened); }, 10000));
        user.Press(VK_ESCAPE);
    });
    store(L".html", usual);
    SHDeleteKeyW(HKEY_CLASSES_ROOT, Type);
    std::filesystem::remove_all(folder);
}

}  // namespace
}  // namespace corvane::test
