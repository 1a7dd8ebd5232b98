// The address list and its file, as the dialog's window drives them.
#include "selection/dlgIP.h"

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "hardware/vendor_text.h"
#include "platform/portable/shown_messages.h"
#include "selection/address_file.h"
#include "selection/portable/dialog_users.h"

namespace corvane {
namespace {

using namespace std::string_literals;
namespace fs = std::filesystem;

constexpr uint32_t ThisMachine = 0x7F000001;

class AddressList : public testing::Test {
protected:
    void SetUp() override {
        std::string folder = fs::temp_directory_path() / "corvane-list-XXXXXX";
        ASSERT_NE(mkdtemp(folder.data()), nullptr);
        Folder = folder;
        File = folder + "/iplist.txt";
        platform::ShownMessages.clear();
    }
    void TearDown() override { fs::remove_all(Folder); }

    void Write(const std::string& bytes) { std::ofstream(File, std::ios::binary) << bytes; }
    std::string Read() const {
        std::ifstream file(File, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    dlgIP Open() const { return {"LTR27", Folder}; }

    static std::string Shown(const dlgIP& dialog) {
        std::string text;
        for (const uint32_t address : dialog.lstIP()) text += DottedText(address) + " ";
        return text + "@" + std::to_string(dialog.ListIndex());
    }

    std::string Folder, File;
};

TEST_F(AddressList, ReadsWhateverTheFileHolds) {
    const std::string megabytes(3 << 20, '1');
    const struct {
        std::string Bytes, Addresses;
    } cases[] = {
        {"10.0.0.5\r\n10.0.0.7\r\n", "10.0.0.5 10.0.0.7 "},
        {"10.0.0.5\r\n10.0.0.7", "10.0.0.5 10.0.0.7 "},
        {"10.0.0.5\n10.0.0.7\r10.0.0.9\n\r\r\n", "10.0.0.5 10.0.0.7 10.0.0.9 "},
        {"\xEF\xBB\xBF"
         "10.0.0.5\r\n",
         "10.0.0.5 "},
        {"10.0.0.5\r\n127.0.0.1\r\n10.0.0.5\r\n010.000.000.005\r\n", "10.0.0.5 "},
        {"1.2.3\r\n1.2.3.256\r\n0.0.0.0\r\n 1.2.3.4\r\n1.2.3.4 \r\n1.2.3.4.5\r\n", "1.2.3.4 "},
        {"1.2.3.\n1..2.3\n+1.2.3.4\n1.2.3.4e0\n1.2.3.0x4\n0001.2.3.4\n1.2.3.٤\n,1.2.3.4\n", ""},
        {"255.255.255.255\n128.0.0.0\n1.2.3.4.\n", "255.255.255.255 128.0.0.0 1.2.3.4 "},
        {"1.2.3.4\0\n1.2.3.\0"
         "5\n\0\0\n1.2.3.6.\0\n"s,
         "1.2.3.6 "},
        {"\xFF\xFE"
         "1\0.\0002\0.\0003\0.\0004\0\n\0"s,
         ""},
        {megabytes + "\r\n10.0.0.5\r\n1.2.3.4." + megabytes + "\r\n", "10.0.0.5 1.2.3.4 "},
        {std::string(20 << 20, '\n') + "10.0.0.5", ""},  // longer than any list
        {"", ""},
    };
    for (const auto& each : cases) {
        Write(each.Bytes);
        const std::string first = each.Addresses.empty() ? "@0" : "@1";
        EXPECT_EQ(Shown(Open()), "127.0.0.1 " + each.Addresses + first) << each.Bytes.substr(0, 30);
        EXPECT_FALSE(std::ranges::count(ReadAddresses(File), 0u));
    }
    const std::string cut = "1.2.3.40\n10.0.0.50";  // the last line ends in the middle of an octet
    Write(std::string((16 << 20) - cut.size() + 1, '\n') + cut);
    EXPECT_EQ(Shown(Open()), "127.0.0.1 1.2.3.40 @1");
    fs::remove(File);
    EXPECT_EQ(Shown(Open()), "127.0.0.1 @0");
    fs::create_directory(File);
    EXPECT_EQ(Shown(Open()), "127.0.0.1 @0");
}

TEST_F(AddressList, OkPutsANewAddressFirstAndKeepsAKnownOne) {
    const struct {
        const char* File;
        uint32_t Chosen;
        const char* Saved;
    } cases[] = {{"10.0.0.5\n10.0.0.7\n", 0xC0A80114, "192.168.1.20\r\n10.0.0.5\r\n10.0.0.7\r\n"},
                 {"10.0.0.5\n10.0.0.7\n", 0x0A000007, "10.0.0.5\n10.0.0.7\n"},
                 {"10.0.0.5\n127.0.0.1\n", ThisMachine, "10.0.0.5\n127.0.0.1\n"},
                 {"127.0.0.1\n010.0.0.5", 0xFFFFFFFF, "255.255.255.255\r\n10.0.0.5\r\n"}};
    for (const auto& each : cases) {
        Write(each.File);
        dlgIP dialog = Open();
        dialog.Address.SetValue(each.Chosen);
        EXPECT_TRUE(dialog.PressOK());
        dialog.Unload();
        EXPECT_EQ(dialog.SelectedIP(), each.Chosen);
        EXPECT_EQ(Read(), each.Saved);
    }
    fs::remove(File);
    dlgIP dialog = Open();
    EXPECT_FALSE(dialog.RemoveEnabled());
    EXPECT_TRUE(dialog.PressOK());
    dialog.Unload();
    EXPECT_EQ(dialog.SelectedIP(), ThisMachine);
    EXPECT_FALSE(fs::exists(File));
}

TEST_F(AddressList, OkWithoutAnAddressSaysSoAndStays) {
    for (const bool emptyBox : {true, false}) {
        dlgIP dialog = Open();
        dialog.Address.SetValue(0);
        if (emptyBox) dialog.Address.txtIP[2].Text.clear();
        platform::ShownMessages.clear();
        EXPECT_FALSE(dialog.PressOK());
        EXPECT_EQ(platform::ShownMessages, std::vector{"LTR27|Please select IP address!"s});
        EXPECT_EQ(Shown(dialog), "127.0.0.1 @0");
        EXPECT_EQ(dialog.SelectedIP(), 0u);
    }
}

TEST_F(AddressList, SelectionShowsItsAddress) {
    Write("10.0.0.5\n10.0.0.7\n");
    dlgIP dialog = Open();
    for (const int index : {2, 0, 1, 0, 2}) {
        dialog.Address.SetValue(0);
        dialog.Select(index);
        EXPECT_EQ(dialog.RemoveEnabled(), index > 0);
        EXPECT_EQ(dialog.Address.Value(), dialog.lstIP()[static_cast<size_t>(index)]);
    }
    for (const int none : {-1, 3}) {
        dialog.Select(none);
        EXPECT_EQ(dialog.ListIndex(), -1);
        EXPECT_FALSE(dialog.RemoveEnabled());
        EXPECT_EQ(dialog.Address.Value(), 0x0A000007u);
        dialog.PressRemove();
        EXPECT_EQ(dialog.lstIP().size(), 3u);
    }
}

TEST_F(AddressList, RemovedEntriesAreGoneHoweverTheDialogCloses) {
    Write("1.0.0.1\n1.0.0.2\n1.0.0.3\n");
    dlgIP dialog = Open();
    dialog.Select(2);
    dialog.PressRemove();
    EXPECT_EQ(Shown(dialog), "127.0.0.1 1.0.0.1 1.0.0.3 @2");
    EXPECT_EQ(dialog.Address.Value(), 0x01000003u);
    dialog.PressRemove();
    EXPECT_EQ(Shown(dialog), "127.0.0.1 1.0.0.1 @1");
    dialog.Select(0);
    dialog.PressRemove();
    EXPECT_EQ(Shown(dialog), "127.0.0.1 1.0.0.1 @0");
    dialog.PressCancel();
    dialog.Unload();
    EXPECT_EQ(Read(), "1.0.0.1\r\n");
    dlgIP cleared = Open();
    cleared.PressClear();
    EXPECT_EQ(Shown(cleared), "127.0.0.1 @0");
    EXPECT_EQ(cleared.Address.Value(), ThisMachine);
    cleared.Unload();
    EXPECT_EQ(cleared.SelectedIP(), 0u);
    EXPECT_EQ(Read(), "");
    EXPECT_TRUE(fs::exists(File));
    fs::remove(File);
    dlgIP untouched = Open();
    untouched.PressClear();  // nothing to clear, nothing to write
    untouched.Unload();
    EXPECT_FALSE(fs::exists(File));
}

TEST_F(AddressList, ALongListStaysWithinItsPositions) {
    std::string lines;
    for (uint32_t i = 1; i < 40000; i++) lines += DottedText(i) + "\n";
    Write(lines);
    dlgIP dialog = Open();
    EXPECT_EQ(dialog.lstIP().size(), MaxAddresses);
    dialog.Address.SetValue(0xC0A80114);
    EXPECT_TRUE(dialog.PressOK());
    dialog.Unload();
    EXPECT_EQ(dialog.SelectedIP(), 0xC0A80114u);
    EXPECT_EQ(Read(), lines);
}

TEST_F(AddressList, AFileThatCanNotBeWrittenWholeStaysAsItWas) {
    const std::vector<uint32_t> addresses(1000, 0x0A000005);
    Write("1.0.0.1\r\n");
    const auto previous = std::signal(SIGXFSZ, SIG_IGN);
    rlimit limit = {};
    getrlimit(RLIMIT_FSIZE, &limit);
    const rlimit full = {4096, limit.rlim_max};  // the disk is full in the middle of the list
    setrlimit(RLIMIT_FSIZE, &full);
    WriteAddresses(File, addresses);
    setrlimit(RLIMIT_FSIZE, &limit);
    std::signal(SIGXFSZ, previous);
    EXPECT_EQ(Read(), "1.0.0.1\r\n");
    EXPECT_EQ(std::distance(fs::directory_iterator(Folder), {}), 1) << "leftovers";
    fs::create_directory(File + ".new");
    WriteAddresses(File, addresses);
    EXPECT_EQ(Read(), "1.0.0.1\r\n");
    fs::remove(File + ".new");
    fs::remove(File);
    fs::create_directory(File);
    WriteAddresses(File, addresses);
    EXPECT_EQ(std::distance(fs::directory_iterator(Folder), {}), 1) << "leftovers";
    WriteAddresses(Folder + "/missing/iplist.txt", addresses);
    fs::remove(File);
    WriteAddresses(File, addresses);
    EXPECT_EQ(fs::file_size(File), 10000u);
}

TEST_F(AddressList, SelectIpGivesWhatTheUserConfirmed) {
    DriverState state;
    state.Device.ADCName = "LTR27";
    EXPECT_EQ(SelectIP(state), 0u);
    UserOfIP = [](dlgIP& dialog) {
        EXPECT_EQ(dialog.Caption + dialog.RemoveCaption + dialog.ClearCaption + dialog.CancelCaption,
                  "Select IP AddressRemoveClearCancel");
        dialog.PressOK();
    };
    const uint32_t proposed = SelectIP(state);
    UserOfIP = nullptr;
    EXPECT_EQ(proposed, ThisMachine);
}

}  // namespace
}  // namespace corvane
