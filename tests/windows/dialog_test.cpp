// The four dialogs as a user has them: reached through the host's members, used with keyboard and mouse.
#include <windows.h>

#include <commctrl.h>

#include <cstring>
#include <fstream>
#include <iterator>

#include "tests/windows/dialog_user.h"
#include "tests/windows/recording_host.h"

namespace corvane::test {
namespace {

// Titles and texts in Russian, the language that the tests run in.
constexpr wchar_t AddressTitle[] = L"\u0412\u044B\u0431\u043E\u0440 IP \u0430\u0434\u0440\u0435\u0441\u0430";
constexpr wchar_t SetupTitle[] = L"\u041D\u0430\u0441\u0442\u0440\u043E\u0439\u043A\u0438 LTR27 (v3.2.1)";
constexpr wchar_t ConnectText[] =
    L"\u041F\u043E\u0434\u043A\u043B\u044E\u0447\u0438\u0442\u0435 LTR \u043A\u0440\u0435\u0439\u0442 \u0438 "
    L"\u0437\u0430\u043F\u0443\u0441\u0442\u0438\u0442\u0435 LTR Server!";
constexpr wchar_t SelectText[] =
    L"\u041F\u043E\u0436\u0430\u043B\u0443\u0439\u0441\u0442\u0430 \u0443\u043A\u0430\u0436\u0438\u0442\u0435 IP "
    L"\u0430\u0434\u0440\u0435\u0441!";
constexpr wchar_t DeviceTitle[] = L"Select Device - IP: 127.0.0.1";
constexpr int MessageTextId = 0xFFFF;  // of the text in the platform's message boxes

std::string ListFile() {
    const std::wstring path = ComponentPath();
    return std::string(path.begin(), path.begin() + static_cast<ptrdiff_t>(path.rfind(L'\\') + 1)) + "iplist.txt";
}

std::string FileText() {
    std::ifstream file(ListFile(), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

class Dialogs : public DriverTest {
protected:
    void SetUp() override {
        std::remove(ListFile().c_str());
        RegDeleteKeyW(HKEY_CURRENT_USER, SettingsKey);
        DriverTest::SetUp();
        // A host that takes input, as the dialogs come in front of it.
        Host = CreateWindowW(WC_STATICW, L"Host", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 40, 40, 500, 400, nullptr, nullptr,
                             nullptr, nullptr);
        SetForegroundWindow(Host);
    }
    void TearDown() override {
        DestroyWindow(Host);
        DriverTest::TearDown();
        std::remove(ListFile().c_str());
        RegDeleteKeyW(HKEY_CURRENT_USER, SettingsKey);
    }

    void Configure(const std::string& toml) { ASSERT_EQ(0, LtrSim_Configure(toml.c_str())) << LtrSim_Message(); }

    bool TestWith(const wchar_t* title, std::function<void(DialogUser&)> script) {
        const DialogUser user(title, std::move(script));
        const bool found = True(Driver.Get(), &IADC3::Test);
        EXPECT_TRUE(IsWindowEnabled(Host)) << "the host is usable again";
        return found;
    }

    void SettingWith(std::function<void(DialogUser&)> script) {
        const DialogUser user(SetupTitle, std::move(script));
        EXPECT_FALSE(True(Driver.Get(), &IADC3::ShowSetting));
    }

    HWND Host = nullptr;
};

// The controls that the Tab key visits, until it has gone round.
std::vector<HWND> TabStops(DialogUser& user, int count) {
    std::vector<HWND> stops;
    for (; count > 0; count--) {
        stops.push_back(user.Focus());
        user.Press(VK_TAB);
    }
    return stops;
}

TEST_F(Dialogs, AddressIsTypedAndRemembered) {
    Configure(Server("192.168.10.5") + Crate("3T000001", {7}));
    EXPECT_TRUE(TestWith(AddressTitle, [&](DialogUser& user) {
        EXPECT_FALSE(IsWindowEnabled(Host));
        // In the order of the Tab key the boxes come first, the leftmost first of all.
        HWND boxes[4];
        for (int i = 0; i < 4; i++) boxes[i] = user.Child(WC_EDITW, i);
        EXPECT_EQ(std::vector<std::wstring>{L"127.0.0.1"}, ListLines(user.Child(WC_LISTBOXW, 0)));
        EXPECT_EQ(boxes[0], user.Focus());
        user.Press(VK_HOME);
        user.Click(boxes[0], 8, 5, 2);  // a double click takes the whole text
        user.Type("192");
        EXPECT_EQ(boxes[1], user.Focus()) << "the third digit moves on";
        user.Press(VK_DELETE);
        user.Type("1689");
        EXPECT_EQ(L"168", TextOf(boxes[1]));
        EXPECT_EQ(L"90", TextOf(boxes[2])) << "at the front of the box it moved on to";
        user.Press('A', VK_CONTROL);
        SendMessageW(boxes[2], EM_SETSEL, 0, -1);
        user.Type("10");
        user.Press(VK_OEM_PERIOD);
        user.Press('X');
        EXPECT_EQ(boxes[2], user.Focus());
        user.Press(VK_RIGHT);
        EXPECT_EQ(boxes[3], user.Focus());
        user.Press(VK_DELETE);
        user.Type("5");
        for (const HWND box : {boxes[2], boxes[1], boxes[0]}) {
            for (int i = 0; i < 4 && user.Focus() != box; i++) user.Press(VK_LEFT);
            EXPECT_EQ(box, user.Focus());
        }
        user.Press(VK_END);
        EXPECT_EQ(boxes[3], user.Focus());
        user.Press(VK_RETURN);
    }));
    EXPECT_EQ("192.168.10.5\r\n", FileText());
    short index = 0;
    BSTR name = nullptr;
    EXPECT_EQ(S_OK, Driver->get_ChannelName(&index, &name));
    EXPECT_NE(nullptr, wcsstr(name, L"07"));
    SysFreeString(name);
}

TEST_F(Dialogs, AddressesAreChosenRemovedAndRefused) {
    std::ofstream(ListFile(), std::ios::binary) << "10.0.0.5\r\n10.0.0.6\r\n10.0.0.7\r\n";
    Configure(Server("192.168.10.5"));
    EXPECT_FALSE(TestWith(AddressTitle, [](DialogUser& user) {
        const HWND list = user.Child(WC_LISTBOXW, 0);
        const HWND ok = user.Child(WC_BUTTONW, 0), remove = user.Child(WC_BUTTONW, 1);
        const HWND clear = user.Child(WC_BUTTONW, 2), cancel = user.Child(WC_BUTTONW, 3);
        EXPECT_EQ(1, SendMessageW(list, LB_GETCURSEL, 0, 0));
        const std::vector<HWND> stops = TabStops(user, 9);
        const HWND first = user.Child(WC_EDITW, 0);
        EXPECT_EQ((std::vector<HWND>{first, user.Child(WC_EDITW, 1), user.Child(WC_EDITW, 2), user.Child(WC_EDITW, 3),
                                     list, ok, remove, clear, cancel}),
                  stops);
        EXPECT_EQ(first, user.Focus());
        user.Click(list, 10, 5);
        EXPECT_EQ(L"127", TextOf(first));
        EXPECT_FALSE(IsWindowEnabled(remove));
        user.Press(VK_DOWN);
        user.Press(VK_DOWN);
        EXPECT_EQ(L"6", TextOf(user.Child(WC_EDITW, 3)));
        user.Click(remove);
        EXPECT_EQ((std::vector<std::wstring>{L"127.0.0.1", L"10.0.0.5", L"10.0.0.7"}), ListLines(list));
        EXPECT_EQ(L"7", TextOf(user.Child(WC_EDITW, 3))) << "the one that moved into its place";
        user.Click(user.Child(WC_EDITW, 1));
        user.Press(VK_BACK);
        user.Press(VK_DELETE);
        user.Press(VK_RETURN);
        ASSERT_TRUE(user.WaitFront(L"LTR27"));
        EXPECT_EQ(SelectText, TextOf(GetDlgItem(GetForegroundWindow(), MessageTextId)));
        user.Press(VK_RETURN);
        EXPECT_TRUE(user.WaitFront(AddressTitle)) << "the dialog stays";
        EXPECT_EQ(user.Child(WC_EDITW, 1), user.Focus());
        user.Press(VK_ESCAPE);
    }));
    EXPECT_EQ(ConnectText, LastError(Driver.Get()));
    EXPECT_EQ("10.0.0.5\r\n10.0.0.7\r\n", FileText()) << "Esc keeps what was removed";
}

std::wstring ItemText(HWND tree, HTREEITEM item, UINT* state = nullptr) {
    wchar_t text[128] = {};
    TVITEMW asked = {};
    asked.mask = TVIF_TEXT | TVIF_STATE;
    asked.hItem = item;
    asked.stateMask = TVIS_BOLD | TVIS_EXPANDED;
    asked.pszText = text;
    asked.cchTextMax = 128;
    SendMessageW(tree, TVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&asked));
    if (state != nullptr) *state = asked.state & asked.stateMask;
    return text;
}

HTREEITEM Next(HWND tree, UINT relation, HTREEITEM item) {
    return reinterpret_cast<HTREEITEM>(SendMessageW(tree, TVM_GETNEXTITEM, relation, reinterpret_cast<LPARAM>(item)));
}

void ClickItem(DialogUser& user, HWND tree, HTREEITEM item) {
    RECT area = {};
    std::memcpy(&area, &item, sizeof item);  // the item asked for
    SendMessageW(tree, TVM_GETITEMRECT, TRUE, reinterpret_cast<LPARAM>(&area));
    user.Click(tree, (area.left + area.right) / 2, (area.top + area.bottom) / 2);
}

TEST_F(Dialogs, CrateIsChosenAmongSeveral) {
    Configure(Server("127.0.0.1") + Crate("FIRST", {3}) + Crate("SECOND", {12}));
    const auto firstRoot = [](HWND tree) { return Next(tree, TVGN_ROOT, nullptr); };
    EXPECT_FALSE(TestWith(DeviceTitle, [](DialogUser& user) { user.Press(VK_ESCAPE); }));
    EXPECT_FALSE(TestWith(DeviceTitle, [](DialogUser& user) {
        const HWND cancel = user.Child(WC_BUTTONW, 1);
        RECT area = {}, button = {};
        GetClientRect(user.Dialog(), &area);
        GetWindowRect(cancel, &button);
        POINT corner = {button.left, button.top};
        ScreenToClient(user.Dialog(), &corner);
        EXPECT_GE(corner.x, area.right) << "Cancel is out of sight";
        EXPECT_NE(0, SendMessageW(user.Dialog(), WM_GETICON, ICON_SMALL, 0));
        PostMessageW(user.Dialog(), WM_CLOSE, 0, 0);
    }));
    EXPECT_TRUE(TestWith(DeviceTitle, [&](DialogUser& user) {
        const HWND tree = user.Child(WC_TREEVIEWW, 0);
        const HTREEITEM first = firstRoot(tree), second = Next(tree, TVGN_NEXT, first);
        const HTREEITEM module = Next(tree, TVGN_CHILD, second);
        UINT state = 0;
        EXPECT_EQ(L"LTR030 SN:FIRST", ItemText(tree, first, &state));
        EXPECT_EQ(UINT{TVIS_BOLD | TVIS_EXPANDED}, state);
        EXPECT_EQ(L"Slot 12 - LTR27", ItemText(tree, module));
        ClickItem(user, tree, module);
        ItemText(tree, first, &state);
        EXPECT_EQ(UINT{TVIS_EXPANDED}, state);
        EXPECT_EQ(L"LTR030 SN:SECOND", ItemText(tree, second, &state));
        EXPECT_EQ(UINT{TVIS_BOLD | TVIS_EXPANDED}, state);
        user.Press(VK_RETURN);
    }));
    SettingWith([&](DialogUser& user) {
        const HWND tree = user.Child(WC_TREEVIEWW, 0);
        EXPECT_EQ(L"12. LTR27", ItemText(tree, Next(tree, TVGN_CHILD, firstRoot(tree))));
    });
}

TEST_F(Dialogs, SettingsAreShownAndChanged) {
    Configure(Server("127.0.0.1") + Crate("FIRST", {3}));
    ASSERT_TRUE(True(Driver.Get(), &IADC3::Test));
    SettingWith([](DialogUser& user) {
        const HWND tree = user.Child(WC_TREEVIEWW, 0), info = user.Child(WC_EDITW, 0);
        const HWND list = user.Child(WC_LISTBOXW, 0), combo = user.Child(WC_COMBOBOXW, 0);
        const std::vector<std::wstring> lines = ListLines(list);
        ASSERT_EQ(8u, lines.size());
        EXPECT_TRUE(lines[0].starts_with(L"03_SEQ\tv")) << std::string(lines[0].begin(), lines[0].end());
        EXPECT_EQ(L"03_Empty", lines[7]);
        EXPECT_EQ(tree, user.Focus());
        EXPECT_TRUE(TextOf(info).starts_with(L"Crate: LTR030\r\nCrate SN: FIRST")) << "the crate is described first";
        const HTREEITEM crate = Next(tree, TVGN_ROOT, nullptr);
        ClickItem(user, tree, Next(tree, TVGN_CHILD, crate));
        EXPECT_TRUE(TextOf(info).starts_with(L"Board: LTR27"));
        ClickItem(user, tree, crate);
        EXPECT_TRUE(TextOf(info).starts_with(L"Crate: LTR030"));
        UINT state = 0;
        user.Press(VK_LEFT);  // collapses
        ItemText(tree, crate, &state);
        EXPECT_EQ(UINT{TVIS_EXPANDED}, state & TVIS_EXPANDED);
        const std::vector<HWND> stops = TabStops(user, 6);
        EXPECT_EQ((std::vector<HWND>{tree, info, list, combo, GetDlgItem(user.Dialog(), IDOK),
                                     GetDlgItem(user.Dialog(), IDCANCEL)}),
                  stops);
        // Two captions mark this letter, one a capital: the key goes on from one to the next. Keyboards may not have
        // it.
        const std::pair<wchar_t, HWND> marked[] = {{L'\u043C', list}, {L'\u041C', combo}};
        for (const auto& [letter, control] : marked) {
            PostMessageW(user.Focus(), WM_SYSCHAR, letter, KF_ALTDOWN << 16);
            EXPECT_TRUE(WaitFor([&] { return user.Focus() == control; }, 2000)) << GetDlgCtrlID(user.Focus());
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
    EXPECT_EQ(5u, StoredNumber(L"MarkSTARTMode"));
    Driver = CreateDriver();
    SettingWith([](DialogUser& user) {
        const HWND combo = user.Child(WC_COMBOBOXW, 0);
        EXPECT_EQ(5, SendMessageW(combo, CB_GETCURSEL, 0, 0));
        user.Click(combo, 8, 8);
        user.Press(VK_UP);
        user.Press(VK_RETURN);
        user.Press(VK_ESCAPE);
    });
    Driver.Reset();
    EXPECT_EQ(5u, StoredNumber(L"MarkSTARTMode")) << "Esc changes nothing";
}

TEST_F(Dialogs, HelpThatCannotBeOpenedIsReported) {
    const std::string folder = ListFile().substr(0, ListFile().rfind('\\') + 1), file = folder + "LCardTest.chm";
    const std::string hidden = folder + "LCardA.chm";  // is no ordinary file
    for (const std::string& each : {hidden, file}) std::ofstream(each) << "no help";
    EXPECT_TRUE(SetFileAttributesA(hidden.c_str(), FILE_ATTRIBUTE_HIDDEN));
    Driver.Reset();
    Driver = CreateDriver();  // the first object looks for the file
    for (const std::string& each : {hidden, file}) EXPECT_TRUE(DeleteFileA(each.c_str()));
    SettingWith([](DialogUser& user) {
        EXPECT_TRUE(IsWindowEnabled(user.Child(WC_BUTTONW, 4)));
        user.Press(VK_F1);
        EXPECT_TRUE(WaitFor(
            [&] {
                const HWND text = GetDlgItem(GetForegroundWindow(), MessageTextId);
                return text != nullptr && TextOf(text).find(L"LCardTest.chm") != std::wstring::npos;
            },
            5000));
        user.Press(VK_RETURN);
        user.Press(VK_ESCAPE);
    });
}

}  // namespace
}  // namespace corvane::test
