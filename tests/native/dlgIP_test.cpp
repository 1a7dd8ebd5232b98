// The address list with its file and the address control, as the dialog's window drives them.
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>
#include <tuple>

#include "base/dotted_address.h"
#include "selection/address_file.h"
#include "selection/dlgIP.h"
#include "selection/ucIP.h"
#include "standins/user.h"

namespace corvane {
namespace {

using namespace std::string_literals;
namespace fs = std::filesystem;

class AddressList : public testing::Test {
protected:
    void SetUp() override {
        std::string folder = fs::temp_directory_path() / "corvane-list-XXXXXX";
        ASSERT_NE(mkdtemp(folder.data()), nullptr);
        Folder = folder;
        File = folder + "/iplist.txt";
    }
    void TearDown() override { fs::remove_all(Folder); }

    void Write(const std::string& bytes) { std::ofstream(File, std::ios::binary) << bytes; }
    std::string Read() const {
        std::ifstream file(File, std::ios::binary);
        return file ? std::string(std::istreambuf_iterator<char>(file), {}) : "no file";
    }

    dlgIP Open() const { return {"LTR27", Folder}; }

    static std::string Shown(const dlgIP& dialog) {
        std::string text;
        for (const uint32_t address : dialog.lstIP()) text += DottedText(address) + " ";
        return text + "@" + std::to_string(dialog.ListIndex());
    }

    std::string Folder, File;
};

// What the user does: an index selects, "=" and an address types it, "gap" empties a box, the rest are buttons.
void Do(dlgIP& dialog, const std::string& actions) {
    std::istringstream words(actions);
    for (std::string word; words >> word;) {
        if (word[0] == '=') dialog.Address.SetValue(ParseIP(word.substr(1)));
        if (word == "gap") dialog.Address.txtIP[2].Text.clear();
        if (word == "ok") {
            const bool closes = dialog.PressOK();
            EXPECT_EQ(closes, dialog.SelectedIP() != 0);
        }
        if (word == "cancel") dialog.PressCancel();
        if (word == "remove") dialog.PressRemove();
        if (word == "clear") dialog.PressClear();
        if (std::isdigit(word[0]) || word[0] == '-') dialog.Select(std::stoi(word));
    }
}

TEST_F(AddressList, KeepsWhatTheUserMadeOfIt) {
    const std::string no = "no file";
    const std::string two = "1.1.1.1\n2.2.2.2\n";  // not as it would be written: an untouched file shows
    const std::string three = two + "3.3.3.3\n";
    const std::string asked = " LTR27|Please select IP address!";
    const struct {
        std::string File, Actions, Shown, Typed, Selected, Saved;
    } cases[] = {
        {no, "clear remove", "@0", "127.0.0.1", "0.0.0.0", no},
        {no, "=9.9.9.9 ok", "9.9.9.9 @1", "9.9.9.9", "9.9.9.9", "9.9.9.9\r\n"},
        {two, "=2.2.2.2 ok", "1.1.1.1 2.2.2.2 @1", "2.2.2.2", "2.2.2.2", two},
        {two, "2 =9.9.9.9 ok", "9.9.9.9 1.1.1.1 2.2.2.2 @1", "9.9.9.9", "9.9.9.9", "9.9.9.9\r\n1.1.1.1\r\n2.2.2.2\r\n"},
        {two, "=9.9.9.9 cancel", "1.1.1.1 2.2.2.2 @1", "9.9.9.9", "0.0.0.0", two},
        {two, "gap ok", "1.1.1.1 2.2.2.2 @1" + asked, "0.0.0.0", "0.0.0.0", two},
        {"1.1.1.1\n127.0.0.1\n", "=127.0.0.1 ok", "1.1.1.1 @1", "127.0.0.1", "127.0.0.1", "1.1.1.1\n127.0.0.1\n"},
        {"127.0.0.1\n01.1.1.1", "=255.0.0.9 ok", "255.0.0.9 1.1.1.1 @1", "255.0.0.9", "255.0.0.9",
         "255.0.0.9\r\n1.1.1.1\r\n"},
        {three, "0 remove", "1.1.1.1 2.2.2.2 3.3.3.3 @0", "127.0.0.1", "0.0.0.0", three},
        {three, "4 remove", "1.1.1.1 2.2.2.2 3.3.3.3 @-1", "1.1.1.1", "0.0.0.0", three},
        {three, "2 remove", "1.1.1.1 3.3.3.3 @2", "3.3.3.3", "0.0.0.0", "1.1.1.1\r\n3.3.3.3\r\n"},
        {three, "3 remove cancel", "1.1.1.1 2.2.2.2 @2", "2.2.2.2", "0.0.0.0", "1.1.1.1\r\n2.2.2.2\r\n"},
        {three, "remove remove remove remove", "@0", "127.0.0.1", "0.0.0.0", ""},
        {three, "3 clear cancel", "@0", "127.0.0.1", "0.0.0.0", ""},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(each.File + ": " + each.Actions);
        ShownMessages.clear();
        fs::remove(File);
        if (each.File != no) Write(each.File);
        dlgIP dialog = Open();
        Do(dialog, each.Actions);
        dialog.Unload();
        std::string shown = Shown(dialog);
        for (const std::string& message : ShownMessages) shown += " " + message;
        EXPECT_EQ(shown, "127.0.0.1 " + each.Shown);
        EXPECT_EQ(DottedText(dialog.Address.Value()), each.Typed);
        EXPECT_EQ(dialog.RemoveEnabled(), dialog.ListIndex() > 0);
        EXPECT_EQ(DottedText(dialog.SelectedIP()), each.Selected);
        EXPECT_EQ(Read(), each.Saved);
    }
}

TEST_F(AddressList, ReadsWhateverTheFileHolds) {
    const std::string megabytes(3 << 20, '1');
    const std::string byteOrderMark = "\xEF\xBB\xBF";
    const std::string cut = "1.2.3.40\n10.0.0.50";  // behind the longest list: ends in the middle of an octet
    const std::pair<std::string, std::string> cases[] = {
        {"1.1.1.1\n2.2.2.2\r3.3.3.3\n\r\r\n4.4.4.4", "1.1.1.1 2.2.2.2 3.3.3.3 4.4.4.4 "},
        {byteOrderMark + "1.1.1.1\r\n", "1.1.1.1 "},
        {"10.0.0.5\r\n127.0.0.1\r\n10.0.0.5\r\n010.000.000.005\r\n", "10.0.0.5 "},
        {"1.2.3\r\n1.2.3.256\r\n0.0.0.0\r\n 1.2.3.4\r\n1.2.3.4 \r\n1.2.3.4.5\r\n", "1.2.3.4 "},
        {"1.2.3.\n1..2.3\n+1.2.3.4\n1.2.3.4e0\n1.2.3.0x4\n0001.2.3.4\n1.2.3.٤\n,1.2.3.4\n1.2.3.:\n1.2.3./\n", ""},
        {"255.255.255.255\n128.0.0.0\n1.2.3.4.\n", "255.255.255.255 128.0.0.0 1.2.3.4 "},
        {"\377\3761\0.\0002\0.\0003\0.\0004\0\n\0"s, ""},
        {megabytes + "\r\n10.0.0.5\r\n1.2.3.4." + megabytes + "\r\n", "10.0.0.5 1.2.3.4 "},
        {std::string((16 << 20) - cut.size() + 1, '\n') + cut, "1.2.3.40 "},
        {"", ""}};
    for (const auto& [bytes, addresses] : cases) {
        Write(bytes);
        EXPECT_EQ(Shown(Open()), "127.0.0.1 " + addresses + (addresses.empty() ? "@0" : "@1")) << bytes.substr(0, 30);
    }
    std::string lines;
    for (uint32_t i = 1; i < 40000; i++) lines += DottedText(i) + "\n";
    Write(lines);
    dlgIP dialog = Open();
    EXPECT_EQ(dialog.lstIP().size(), MaxAddresses);
    Do(dialog, "=192.168.1.20 ok");
    dialog.Unload();
    EXPECT_EQ(dialog.SelectedIP(), 0xC0A80114u);
    EXPECT_EQ(Read(), lines) << "a full list takes no more";
}

// In the tables "1|2" is a box with its caret in the middle, "1[23]" one whose last two digits are
// selected.
OctetBox Marked(std::string text) {
    const size_t start = text.find_first_of("|[");
    const size_t end = text.find(']');
    std::erase_if(text, [](char character) { return character < '0' || character > '9'; });
    return {text, start, end == std::string::npos ? 0 : end - start - 1, text};
}

std::string Shown(const OctetBox& box) {
    std::string text = box.Text;
    if (box.SelLength == 0) return text.insert(box.SelStart, "|");
    return text.insert(box.SelStart + box.SelLength, "]").insert(box.SelStart, "[");
}

class IpControl : public testing::Test {
protected:
    OctetBox& Box(int index) { return Control.txtIP[static_cast<size_t>(index)]; }

    void Hold(int box, const std::string& marked) {
        Box(box) = Marked(marked);
        Focus = box;
    }

    // What an edit box does with characters that are not dropped, and with a paste.
    void Type(const std::string& characters) {
        for (const char character : characters) {
            if (Control.Accepts(Focus, static_cast<char32_t>(character))) Paste(std::string(1, character));
        }
    }
    void Paste(const std::string& text) {
        OctetBox& box = Box(Focus);
        box.Text.replace(box.SelStart, box.SelLength, text);
        box.SelStart += text.size();
        box.SelLength = 0;
        Focus = Control.TextChanged(Focus);
    }

    std::string Texts() { return Box(3).Text + "." + Box(2).Text + "." + Box(1).Text + "." + Box(0).Text; }

    ucIP Control;
    int Focus = ucIP::Leftmost;
};

TEST_F(IpControl, DropsCharactersThatMakeNoOctet) {
    const std::tuple<const char*, const char*, const char*> cases[] = {
        {"25|", "3", "253|"},  {"2|5", "9", "2|5"},    {"[25]", "6", "6|"},
        {"0|", "0", "0|"},     {"|0", "5", "5|0"},     {"|", "07", "7|"},
        {"|123", "0", "|123"}, {"1[2]3", "9", "19|3"}, {"1|2", "eA/:.-+ \x7F", "1|2"}};
    for (const auto& [held, typed, shown] : cases) {
        Hold(0, held);
        Type(typed);
        EXPECT_EQ(Shown(Box(0)), shown) << held << " " << typed;
    }
    Hold(0, "|");
    for (const char32_t other : {U'٣', char32_t{0x10FFFF}, char32_t{0x131}}) EXPECT_FALSE(Control.Accepts(0, other));
    for (const char32_t control : {U'\b', U'\0', U'\x1F'}) EXPECT_TRUE(Control.Accepts(0, control));
}

// Behind a third digit the next box has the focus; a text that came back is none that was typed.
TEST_F(IpControl, BringsChangedTextsInOrder) {
    const std::string back = "77|", nines(8 << 20, '9');
    const std::tuple<int, const char*, std::string, int, std::string> cases[] = {
        {1, "[77]", "", 1, "|"},       {1, "[77]", "012", 1, "12|"},     {1, "[77]", "0000", 1, "0|"},
        {1, "[77]", "256", 1, back},   {1, "[77]", "-1", 1, back},       {1, "[77]", "1\0"s, 1, back},
        {1, "[77]", "1e1", 1, back},   {1, "[77]", "\xFF\xFE", 1, back}, {1, "[77]", nines, 1, back},
        {3, "19|", "2", 2, "|0"},      {2, "|45", "1", 2, "1|45"},       {0, "25|", "5", 0, "255|"},
        {2, "[192]", "abc", 2, "19|2"}};
    for (const auto& [box, held, pasted, focus, shown] : cases) {
        Control = {};
        Hold(box, held);
        Paste(pasted);
        EXPECT_EQ(Focus, focus) << held << " " << pasted.substr(0, 20);
        EXPECT_EQ(Shown(Box(Focus)), shown) << held << " " << pasted.substr(0, 20);
        EXPECT_EQ(Box(box).Accepted, Box(box).Text);
    }
}

TEST_F(IpControl, KeysMoveBetweenTheBoxes) {
    using enum CaretKey;
    const std::tuple<int, const char*, CaretKey, int, const char*> cases[] = {
        {2, "|10", Left, 3, "10|"},  {2, "[10]", Up, 3, "10|"},     {2, "1|0", Left, 2, "1|0"},
        {3, "|10", Left, 3, "|10"},  {2, "10|", Right, 1, "|10"},   {2, "1[0]", Down, 1, "|10"},
        {0, "10|", Right, 0, "10|"}, {2, "[1]0", Right, 2, "[1]0"}, {1, "1|0", Home, 3, "|10"},
        {3, "1|0", Home, 3, "1|0"},  {1, "1|0", End, 0, "10|"},     {0, "1|0", End, 0, "1|0"}};
    for (const auto& [box, held, key, focus, shown] : cases) {
        Control.txtIP.fill(Marked("1[0]"));
        Hold(box, held);
        EXPECT_EQ(Control.KeyDown(box, key), focus) << box << held << static_cast<int>(key);
        EXPECT_EQ(Shown(Box(focus)), shown) << box << held << static_cast<int>(key);
    }
    Control.DoubleClick(0);
    EXPECT_EQ(Shown(Box(0)), "[10]");
}

TEST_F(IpControl, ValueIsTheAddress) {
    EXPECT_EQ(Control.Value(), 0u);
    EXPECT_EQ(Texts(), "0.0.0.0");
    Control.SetValue(0xFFFFFFFF);
    EXPECT_EQ(Control.Value(), 0xFFFFFFFF);
    Control.SetValue(0x7F000001);
    Paste("x");
    EXPECT_EQ(Texts(), "127.0.0.1") << "what was written is what comes back";
    EXPECT_EQ(Control.BoxToFill(), 3);
    Box(2).Text = "";
    EXPECT_EQ(Control.BoxToFill(), 2);
    Box(1).Text = "300";  // not seen by the change rule
    Box(3).Text = "zz";
    EXPECT_EQ(Control.Value(), 0u);
    EXPECT_EQ(Texts(), "zz...1") << "the first from the right alone is emptied";
    EXPECT_EQ(Box(1).Accepted, "");
}

}  // namespace
}  // namespace corvane
