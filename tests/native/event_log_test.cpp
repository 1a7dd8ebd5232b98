#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <regex>

#include "platform/event_log.h"
#include "platform/files.h"
#include "tests/native/driver_fixture.h"

namespace corvane {
namespace {

class EventLog : public DriverFixture {
protected:
    void SetUp() override {
        std::filesystem::create_directories(Folder);
        setenv("CORVANE_LOG", Path.c_str(), 1);
        DriverFixture::SetUp();
    }
    void TearDown() override {
        DriverFixture::TearDown();
        unsetenv("CORVANE_LOG");
        std::filesystem::remove_all(Folder);
    }

    // A recording whose second module pauses for a block.
    void Record() {
        Configure(SequenceCrate({3, 5}, "1.0"));
        AddFault("call = \"LTR27_Recv\"\nslot = 5\nafter = 2\ntimes = 1\nstall = true\n");
        EXPECT_TRUE(Driver->Test());
        Select({1, 2, 16});
        Driver->SetRate(1000);
        EXPECT_TRUE(Driver->StartRecord());
        EXPECT_FALSE(Take(192).empty());
        StopWhole();
        Driver.reset();
    }
    std::string Text() const {
        std::ifstream file(Path, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    int64_t Count(const std::string& words) const {
        const std::string text = Text();
        const std::regex sought(words);
        return std::distance(std::sregex_iterator(text.begin(), text.end(), sought), {});
    }

    const std::filesystem::path Folder = std::filesystem::temp_directory_path() / "corvane-event-log";
    const std::filesystem::path Path = Folder / "named.log";
};

TEST_F(EventLog, IsKeptWhereItExistsAndTellsTheRoadOfARecording) {
    Record();
    EXPECT_TRUE(std::filesystem::is_empty(Folder)) << "nobody asked for a log";
    std::ofstream(Path).flush();
    Record();
    std::string text = Text();
    EXPECT_TRUE(std::regex_match(
        text, std::regex("(\\d{4}-\\d\\d-\\d\\dT\\d\\d:\\d\\d:\\d\\d\\.\\d{3}Z \\d+\\.\\d+ [^\\r\\n]+\\r\\n)+")))
        << text;
    size_t last = 0;
    for (const char* part :
         {"Corvane 3.", "host ", "settings read", "server 127.0.0.1: crates 1", "opening crate CRATE1",
          "Crate Slot: 3, mezzanines SEQ, SEQ, SEQ, SEQ, SEQ, SEQ, SEQ, -\r\n", "Crate Slot: 5",
          ("recording: channels 1-2,16 at 1000.000000 Hz, ring of 32768 kadrs, blocks of 64, time-out 564 ms, "
           "START mark mode 0, waits for the mark\r\n"),
          "gap: slot 5, 64 kadrs from 128: nothing came",
          "recording ended: ", " kadrs, of which the host has 192; gaps: 1\r\n", "device closed", "settings written"}) {
        const size_t at = text.find(part, last);
        EXPECT_NE(std::string::npos, at) << part << " in\n" << text;
        last = at == std::string::npos ? last : at;
    }
    EXPECT_EQ(Count("recording ended"), 1) << "however often one may ask";
    AddFault("call = \"LTR27_Open\"\nerror = -7\n");
    EXPECT_FALSE(std::make_unique<DriverObject>()->Test());
    text = Text().substr(text.size());
    EXPECT_NE(std::string::npos, text.find("slot 3 can't be opened. Error '-7': ")) << text;
    EXPECT_NE(std::string::npos, text.find("no device opened. Error '-7': ")) << text;
    EXPECT_EQ(std::string::npos, text.find("device closed")) << text;
}

TEST_F(EventLog, TellsEachEndOnceAndTheFirstHundredGaps) {
    std::ofstream(Path).flush();
    Configure(SequenceCrate({3}, "0"));
    AddFault("call = \"LTR27_ProcessData\"\nvalue = nan");  // one kadr of each block
    EXPECT_TRUE(Driver->Test());
    Driver->SetRate(1000);
    EXPECT_TRUE(Driver->StartRecord());
    EXPECT_FALSE(Take(120 * 64).empty());
    StopWhole();
    EXPECT_EQ(Count("gap: slot 3, 1 kadrs from "), 100);
    EXPECT_EQ(Count("recording ended: \\d+ kadrs, of which the host has 7680; gaps: 1[2-9]\\d\r\n"), 1) << Text();
    // Threads that end only after the stop: before the next start, and while the device is closed.
    AddFault("call = \"LTR27_Recv\"\nstall = true");
    for (const bool closes : {false, true}) {
        EXPECT_TRUE(Eventually([&] { return Driver->StartRecord(); }));
        const int calls = LtrSim_Calls("LTR27_Recv");
        EXPECT_TRUE(Eventually([&] { return LtrSim_Calls("LTR27_Recv") > calls; }));
        closes ? Driver.reset() : Driver->StopRecord();
    }
    EXPECT_EQ(Count("recording ended"), 3);
    EXPECT_GE(Count("recording not started. Please wait"), 1);
    EXPECT_EQ(Count("device closed"), 1);
}

TEST_F(EventLog, IsBoundedAndHarmlessWhereItCanNotBeWritten) {
    std::ofstream(Path) << std::string(platform::LogBytesMax, 'x');
    Record();
    EXPECT_EQ(platform::LogBytesMax, std::filesystem::file_size(Path.string() + ".old"));
    EXPECT_GT(Text().size(), 500u);
    EXPECT_LT(Text().size(), 10000u);
    std::filesystem::remove(Path);
    std::filesystem::create_directory(Path);
    Record();
    EXPECT_EQ("t 1.2 " + std::string(2000, 'e') + "\r\n", platform::LogLine("t", 1, 2, std::string(2100, 'e')));
    EXPECT_EQ("t 1.2 two lines \r\n", platform::LogLine("t", 1, 2, "two\r\n\tlines\x01"));
}

// Whoever may make files in a folder must not choose which other file is written to.
TEST_F(EventLog, NothingIsWrittenThroughALink) {
    const std::filesystem::path other = Folder / "other", list = Folder / "iplist.txt",
                                beside = Folder / "iplist.txt.new";
    for (const bool symbolic : {true, false}) {
        for (const bool besideIsFree : {true, false}) {
            std::ofstream(other) << "other";
            for (const std::filesystem::path& link : {Path, list}) {
                symbolic ? std::filesystem::create_symlink(other, link)
                         : std::filesystem::create_hard_link(other, link);
            }
            if (!besideIsFree) std::filesystem::create_directory(beside);
            platform::AppendToLog("event");
            EXPECT_EQ(platform::ReplaceContent(list, "10.0.0.7\r\n"), besideIsFree) << symbolic;
            EXPECT_EQ(platform::ReadFileStart(list, 99), besideIsFree ? "10.0.0.7\r\n" : "other") << symbolic;
            EXPECT_EQ(platform::ReadFileStart(other, 99), "other") << symbolic << besideIsFree;
            for (const auto& each : {Path, list, beside}) std::filesystem::remove(each);
        }
    }
}

}  // namespace
}  // namespace corvane
