// The address list and its file, as the dialog's window drives them.
#include "selection/dlgIP.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>

#include "base/dotted_address.h"
#include "selection/address_file.h"
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

}  // namespace
}  // namespace corvane
