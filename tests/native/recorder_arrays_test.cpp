// Recordings in NumPy arrays: what a reader finds while they grow and after they were cut off, and what converting
// makes of them, and of anything else.
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>

#include "recorder/command_line.h"
#include "recorder/npy_file.h"
#include "recorder/npy_recording.h"
#include "tests/recorder/test_console.h"

namespace corvane::recorder {
namespace {

using Numbers = std::vector<int16_t>;

class RecorderArrays : public testing::Test {
protected:
    void SetUp() override {
        std::filesystem::remove_all(Folder);
        std::filesystem::create_directory(Folder);
        Described.Task.Channels = {{0, "a", "", "V", 10, 0}, {17, "b", "", "", -1, 0.5}};
        Described.Task.Modules = {{0, 3}, {1, 5}};
        Described.Device.Modules = {{"", "3", "", ""}, {"", "5", "", ""}};
        Described.Task.Rate = 1000;
        Described.Task.WantedKadrs = 9;
        Said.clear();
    }

    // So many more kadrs; in each, the samples are the kadr's number and its opposite.
    void Add(NpyFile& file, int kadrs) {
        Numbers samples;
        for (int i = 0; i < kadrs; i++, Added++) samples.insert(samples.end(), {Added, static_cast<int16_t>(-Added)});
        file.Add({samples, {}});
    }
    // How it is then, with gaps of module 0.
    static Verdict Ended(End end, std::vector<Gap> gaps) { return {end, "", 9, 9, {"doubtful"}, std::move(gaps), 0}; }
    // The array's kadrs and gaps as a reader finds them.
    static std::pair<int64_t, size_t> Found(const std::string& path) {
        const NpyRecording found(path);
        return {found.Kadrs(), found.Verdict().Gaps.size()};
    }
    static std::string Content(const std::string& path) {
        std::ifstream file(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    const std::string Folder = testing::TempDir() + "recorder_arrays", Npy = Folder + "/a.npy",
                      Json = Folder + "/a.json";
    const std::vector<Gap> OneGap = {{0, 3, 2, GapReason::CutShort}};
    Recording Described;
    int16_t Added = 0;
};

TEST_F(RecorderArrays, PromiseNoMoreThanIsThereAndDescribed) {
    using Counts = std::pair<int64_t, size_t>;
    std::ofstream(Npy + ".part") << "left";
    std::ofstream(Json + ".part") << "left, too";
    {
        NpyFile file(Npy);
        EXPECT_EQ(Content(Npy + ".part.1") + Content(Json + ".part.1"), "leftleft, too");
        file.Begin(Described);
        EXPECT_EQ(Found(Npy + ".part"), Counts(0, 0));
        Add(file, 5);
        file.Flush(Ended(End::Unknown, OneGap));
        Add(file, 200000);  // as many are written at once
        EXPECT_EQ(Found(Npy + ".part"), Counts(5, 1));
        // A description that can't be replaced: nothing new is promised.
        std::filesystem::rename(Json + ".part", Json + ".kept");
        std::filesystem::create_directories(Json + ".part/x");
        file.Flush(Ended(End::Unknown, {OneGap[0], {0, 9, 1, GapReason::NothingCame}}));
        std::filesystem::remove_all(Json + ".part");
        std::filesystem::rename(Json + ".kept", Json + ".part");
        EXPECT_EQ(Found(Npy + ".part"), Counts(5, 1));
        file.Flush(Ended(End::Unknown, OneGap));
        // A full disk.
        rlimit before{};
        getrlimit(RLIMIT_FSIZE, &before);
        const rlimit full = {900000, before.rlim_max};
        std::signal(SIGXFSZ, SIG_IGN);
        setrlimit(RLIMIT_FSIZE, &full);
        EXPECT_THROW(Add(file, 200000), Failure);
        setrlimit(RLIMIT_FSIZE, &before);
    }
    EXPECT_EQ(Found(Npy + ".part"), Counts(200005, 1));
    EXPECT_NE(Said.find("What was written until then is in " + Npy + ".part."), std::string::npos) << Said;
    NpyFile again(Npy);
    again.Begin(Described);
    again.Finish(Ended(End::Complete, {}));
    EXPECT_EQ(Found(Npy), Counts(0, 0));
    EXPECT_EQ(Found(Npy + ".part.2"), Counts(200005, 1));
    std::filesystem::remove(Json);
    std::filesystem::create_directory(Json);
    EXPECT_THROW(NpyFile{Npy}, Failure);
}

TEST_F(RecorderArrays, AreTakenForWhatTheyAreOrRefused) {
    NpyFile file(Npy);
    file.Begin(Described);
    Add(file, 9);
    file.Finish(Ended(End::Complete, OneGap));
    const std::string npy = Content(Npy), json = Content(Json);
    const auto refused = [&](const std::string& array, const std::string& description, const std::string& said) {
        std::ofstream(Npy, std::ios::binary) << array;
        std::ofstream(Json) << description;
        Said.clear();
        EXPECT_EQ(RunCommandLine({"convert", Npy, "-q", "-o", Folder + "/a.csv"}), ExitCode::Input);
        EXPECT_NE(Said.find(said), std::string::npos) << said << Said;
    };
    // A part of the head, what stands in its place, and what is said.
    const std::tuple<const char*, const char*, const char*> heads[] = {
        {"NUMPY", "NUMPI", "no NumPy array"},
        {"<i2", ">i2", "no NumPy array"},
        {"False", "True", "no NumPy array"},
        {"(9, 2)", "(-9, 2)", "no NumPy array"},
        {"(9, 2)", "(9,)", "no NumPy array"},
        {"(9, 2)", "(9, 2, 1)", "no NumPy array"},
        {"(9, 2)", "(9, 0)", "has 0 columns"},
        {"(9, 2)", "(9, 33)", "has 33 columns"},
        {"(9, 2)", "(10, 2)", "9 are there"},
        {"(9, 2)", "(9223372036854775807, 2)", " are there"},
        {"(9, 2)", "(8, 2)", "kadrs: not as many"},
        {"(9, 2)", "(9, 1)", "channels: not as many"},
        {"(9, 2)", "(99999999999999999999, 2)", "no NumPy array"}};
    for (const auto& [part, instead, said] : heads) {
        std::string array = npy;
        refused(array.replace(array.find(part), std::string(part).size(), instead), json, said);
    }
    for (const size_t length : {0u, 9u, 11u, 100u}) refused(npy.substr(0, length), json, "no NumPy array");
    refused("\x93NUMPY\x01" + std::string(1, '\0') + "\xFF\xFF{", json, "no NumPy array");
    const std::tuple<const char*, const char*, const char*> descriptions[] = {
        {"\"format\": 1", "\"format\": 2", "format"},
        {"1000.0", "0", "rate_hz"},
        {"1000.0", "\"x\"", "rate_hz"},
        {"1000.0", "1e999", "a.json does not describe"},
        {"\"number\": 17", "\"number\": 32", "number"},
        {"\"number\": 17", "\"number\": -1", "number"},
        {"\"number\": 17", "\"number\": 1.5", "number"},
        {"\"scale\": -1.0", "\"scale\": 0.0", "scale"},
        {"\"scale\": -1.0", "\"scale\": 1e-320", "scale"},
        {"\"slot\": 5", "\"slot\": 100", "slot"},
        {"\"slot\": 5", "\"slot\": -5", "slot"},
        {"\"kadrs\": 9", "\"kadrs\": 8", "kadrs"},
        {"\"first_kadr\": 0", "\"first_kadr\": 9223372036854775807", "first_kadr"},
        {"\"first_kadr\": 3", "\"first_kadr\": -3", "first_kadr"},
        {"\"kadrs\": 2", "\"kadrs\": 18446744073709551615", "kadrs"},
        {"\"ended\": \"complete\"", "\"ended\": \"well\"", "ended"},
        {"\"name\": \"b\"", "\"name\": 5", "type must be string"},
        {"\"name\": \"b\"", "\"name\": \"\xFF\"", "UTF-8"},
        {"\"gaps\"", "\"holes\"", "gaps"},
        {"\"note\": null", "\"note\": [[[[[[[[[[[[0]]]]]]]]]]]]", "nested"}};
    for (const auto& [part, instead, said] : descriptions) {
        std::string description = json;
        refused(npy, description.replace(description.find(part), std::string(part).size(), instead), said);
    }
    for (size_t length = 0; length < json.size() - 2; length += 7) refused(npy, json.substr(0, length), "describe");
    refused(npy, std::string(3000000, ' '), "too large");
    std::filesystem::remove(Json);
    EXPECT_EQ(RunCommandLine({"convert", Npy, "-o", "-"}), ExitCode::Input);
    EXPECT_NE(Said.find("a.json can't be opened"), std::string::npos) << Said;
}

TEST_F(RecorderArrays, AreThinnedWithoutWhatWasNotMeasured) {
    Described.FirstKadr = 1000;
    Described.Part = 2;
    Described.Task.WantedKadrs = UntilInterrupted;
    NpyFile file(Npy);
    file.Begin(Described);
    Add(file, 9);
    file.Finish({End::Interrupted, "", 1009, UntilInterrupted, {}, {{0, 1003, 4, GapReason::CutShort}}, 0});
    // What is asked for, and the text from the line of column names on.
    const std::string note =
        "# not measured: module 0, slot 3, from 1.003 to 1.006, 0.004 s, a receive was cut short\n"
        "# note: after a gap the samples of its module can be late by as much as the gap is long\n";
    const std::pair<std::string, std::string> cases[] = {
        {" --every 3", ",a (V),b\n1.000,0.00,0.5\n1.003,,3.5\n1.006,,6.5\n" + note},
        {" --every 3 --csv excel-ru --from 1001ms --to 1003ms", ";a (V);b\n1,001;0,10;1,5\n"},
        {" --every 4 --means", ",a (V),b\n1.000,0.10,2.0\n1.004,0.70,6.0\n1.008,0.80,8.5\n" + note},
        {" --every 2 --from 1004ms --minmax",
         ",a min (V),a max (V),b min,b max\n1.004,,,4.5,5.5\n1.006,0.70,0.70,6.5,7.5\n1.008,0.80,0.80,8.5,8.5\n" +
             std::string(note).replace(note.find("1.003"), 5, "1.004").replace(note.find("0.004"), 5, "0.003")},
        {" --from 1008ms", ",a (V),b\n1.008,0.80,8.5\n"},
        {" --to 1001ms --keep-filled --csv excel", ",a (V),b\n1.000,0.00,0.5\n"}};
    for (const auto& [options, expected] : cases) {
        std::istringstream words("convert " + Npy + " -q -o -" + options);
        StandardOutputText.clear();
        EXPECT_EQ(RunCommandLine({std::istream_iterator<std::string>(words), {}}), ExitCode::Success) << Said;
        EXPECT_EQ(StandardOutputText.starts_with("\xEF\xBB\xBF# Device: "), options.find("excel") != std::string::npos);
        const size_t names = StandardOutputText.find("\ntime (s)");
        ASSERT_NE(names, std::string::npos);
        EXPECT_EQ(StandardOutputText.substr(names + 9), expected + "# interrupted: 1009 kadrs\n") << options;
    }
    EXPECT_EQ(RunCommandLine({"convert", Npy, "-o", "-", "--from", "1009ms"}), ExitCode::Usage);
    EXPECT_NE(Said.find("it goes from 1.000 to 1.009 s"), std::string::npos) << Said;
}

}  // namespace
}  // namespace corvane::recorder
