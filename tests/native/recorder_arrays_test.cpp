// Recordings in NumPy arrays: what a reader finds while they grow and after they were cut off, and what converting and
// reporting make of them, and of anything else.
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <zlib.h>

#include <cmath>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <random>
#include <sstream>

#include "recorder/command_line.h"
#include "recorder/npy_file.h"
#include "recorder/npy_recording.h"
#include "recorder/page/collected.h"
#include "recorder/page/npy_source.h"
#include "recorder/page/page_text.h"
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

    // What a report says of a recording, its data apart.
    nlohmann::json Reported(const std::string& input, const std::string& options = "") {
        std::istringstream words("report " + input + " -q -o " + Page + options);
        EXPECT_EQ(RunCommandLine({std::istream_iterator<std::string>(words), {}}), ExitCode::Success) << Said;
        const std::string page = Content(Page), start = "id=\"recording\">";
        const size_t from = page.find(start) + start.size();
        return nlohmann::json::parse(page.substr(from, page.find("</script>", from) - from));
    }

    const std::string Page = testing::TempDir() + "recorder_arrays/page.html";
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

// Without vectors, tiles and whole numbers.
template <class Sample>
void ExpectSums(std::mt19937& random, size_t columns, size_t rows) {
    std::vector<Sample> samples(columns * rows);
    for (Sample& sample : samples) sample = static_cast<Sample>(random() % 7 == 0 ? 0x80000000u : random());
    std::vector<ColumnSums> sums(columns);
    SumColumns(std::span<const Sample>(samples), sums);
    for (size_t column = 0; column < columns; column++) {
        int64_t sum = 0;
        int32_t min = INT32_MAX, max = INT32_MIN;
        long double squares = 0;
        for (size_t i = column; i < samples.size(); i += columns) {
            sum += samples[i], min = std::min<int32_t>(min, samples[i]), max = std::max<int32_t>(max, samples[i]);
        }
        const long double mean = static_cast<long double>(sum) / static_cast<long double>(rows);
        for (size_t i = column; i < samples.size(); i += columns) squares += (samples[i] - mean) * (samples[i] - mean);
        const ColumnSums& found = sums[column];
        EXPECT_EQ(std::tuple(found.Count, found.Sum, found.Min, found.Max), std::tuple(rows, sum, min, max)) << columns;
        EXPECT_NEAR(found.Squares, static_cast<double>(squares), static_cast<double>(squares) * 1e-12) << columns;
    }
}

TEST(Reports, SumExactlyForEveryNumberOfColumns) {
    std::mt19937 random(5);
    for (const size_t columns : {1u, 3u, 16u, 31u, 32u, 128u}) {
        for (const size_t rows : {1u, 31u, 700u}) {
            ExpectSums<int16_t>(random, columns, rows);
            ExpectSums<int32_t>(random, columns, rows);
        }
    }
    const Numbers lowest(size_t{SumRowsMax} * 32, INT16_MIN);
    std::vector<ColumnSums> sums(32);
    SumColumns(lowest, sums);
    EXPECT_EQ(sums[31].Sum, -int64_t{SumRowsMax} * 32768);
    EXPECT_EQ(sums[31].Squares, 0);
}

// What a page's program makes of packed numbers: so many series, each of which begins anew.
std::vector<int64_t> Unpacked(const Pieces& pieces, size_t series, size_t count, size_t bytes) {
    std::string packed, sorted(series * count * bytes + 1, '\0');
    for (const std::string& piece : pieces) packed += piece;
    z_stream stream{};
    inflateInit2(&stream, -15);
    stream.next_in = reinterpret_cast<Bytef*>(packed.data());
    stream.avail_in = static_cast<uInt>(packed.size());
    stream.next_out = reinterpret_cast<Bytef*>(sorted.data());
    stream.avail_out = static_cast<uInt>(sorted.size());
    EXPECT_EQ(inflate(&stream, Z_FINISH), Z_STREAM_END);
    EXPECT_EQ(stream.avail_out, 1u);
    inflateEnd(&stream);
    std::vector<int64_t> numbers;
    for (size_t at = 0, last = 0; at < series * count; at++) {
        const size_t i = at % count, inBlock = i % PackedNumbers::BlockNumbers, first = at - inBlock;
        const size_t block = std::min(PackedNumbers::BlockNumbers, count - (i - inBlock));
        size_t folded = 0;
        for (size_t k = 0; k < bytes; k++) {
            folded |= size_t{static_cast<uint8_t>(sorted[first * bytes + k * block + inBlock])} << 8 * k;
        }
        last = (i == 0 ? 0 : last) + ((folded >> 1) ^ (0 - (folded & 1)));
        numbers.push_back(bytes == 1 ? static_cast<int8_t>(last) : static_cast<int16_t>(last));
    }
    return numbers;
}

TEST(Reports, HoldEverySampleOrTheExtremesOfEqualGroups) {
    // Unsorted, overlapping, at the borders of groups, and at both ends.
    const std::vector<Gap> gaps = {{1, 64, 64, {}},     {0, 8, 8, {}},       {0, 0, 1, {}},  {0, 12, 7, {}},
                                   {1, 9000, 1192, {}}, {0, 9001, 1191, {}}, {1, 100, 9, {}}};
    constexpr size_t Kadrs = 10192, Count = 5;
    const std::vector<Columns> modules = {0b00111, 0b11000};
    std::vector<MissingFrom> runs = RunsOf(gaps, modules, 0);
    std::mt19937 random(7);
    Numbers samples(Kadrs * Count);
    for (int16_t& sample : samples) sample = static_cast<int16_t>(random());
    const auto missing = [&](size_t kadr, size_t column) {
        const auto at = static_cast<int64_t>(kadr);
        return column == 1 || std::ranges::any_of(gaps, [&](const Gap& gap) {
                   return gap.Module == (column > 2 ? 1 : 0) && at >= gap.First && at < gap.First + gap.Kadrs;
               });
    };
    // The bytes that it may take, and the kadrs that are thought to come.
    const std::pair<size_t, int64_t> cases[] = {{1000000, 0}, {60000, 0}, {9000, 0}, {300, 0}, {60000, 2000000}};
    for (const auto& [bytesMax, expected] : cases) {
        Collected collected({Count, 2, {0, 0, 0, 1, 1}, 2, 0b00010, expected}, bytesMax, 1000000);
        size_t run = 0;
        for (size_t kadr = 0; kadr < Kadrs;) {
            KadrBlock<int16_t> block;
            const size_t end = std::min<size_t>(kadr + 1 + random() % 900, Kadrs);
            block.Samples.assign(samples.begin() + static_cast<ptrdiff_t>(kadr * Count),
                                 samples.begin() + static_cast<ptrdiff_t>(end * Count));
            for (; kadr < end; kadr++) {
                while (run + 1 < runs.size() && runs[run + 1].First <= static_cast<int64_t>(kadr)) run++;
                block.Runs.push_back({1, runs[run].Missing});
            }
            collected.Add(block);
        }
        const PageData data = collected.Finish(bytesMax);
        EXPECT_LE(data.Size, bytesMax);
        EXPECT_TRUE(data.BinKadrs == 1 || 3 * data.Size > bytesMax) << data.Size;  // no coarser than it must be
        EXPECT_EQ(data.BinKadrs == 1, bytesMax == 1000000u);
        EXPECT_EQ(data.Bins, (static_cast<int64_t>(Kadrs) + data.BinKadrs - 1) / data.BinKadrs);
        EXPECT_TRUE(data.Numbers[1].empty());
        const auto bins = static_cast<size_t>(data.Bins), each = static_cast<size_t>(data.BinKadrs);
        for (const size_t column : {0u, 2u, 3u, 4u}) {
            const std::vector<int64_t> mask = Unpacked(data.Masks[column > 2], 1, bins, 1);
            const std::vector<int64_t> numbers = Unpacked(data.Numbers[column], each == 1 ? 1 : 2, bins, 2);
            int64_t count = 0;
            for (size_t bin = 0; bin < bins; bin++) {
                int64_t min = INT64_MAX, max = INT64_MIN;
                for (size_t kadr = bin * each; kadr < std::min((bin + 1) * each, Kadrs); kadr++) {
                    if (missing(kadr, column)) continue;
                    min = std::min<int64_t>(min, samples[kadr * Count + column]);
                    max = std::max<int64_t>(max, samples[kadr * Count + column]);
                    count++;
                }
                ASSERT_EQ(mask[bin] != 0, min > max) << bytesMax << ' ' << column << ' ' << bin;
                if (min > max) continue;
                const int64_t high =
                    each == 1 ? numbers[bin] : static_cast<int16_t>(numbers[bin] + numbers[bins + bin]);
                ASSERT_EQ(std::pair(numbers[bin], high), std::pair(min, max))
                    << bytesMax << ' ' << column << ' ' << bin;
            }
            EXPECT_EQ(collected.Totals()[column].Sums.Count, count);
        }
    }
}

TEST_F(RecorderArrays, BecomePagesThatSayWhatIsKnown) {
    const std::string hostile = "</script><script>alert('\"&\xE2\x80\xA8";
    Described.Task.Channels = {
        {0, hostile, "", "<b>", 10, 0}, {17, "b", "", "", -2, 0.5}, {18, "Empty", "", "V", 1, 0}};
    Described.Task.WantedKadrs = UntilInterrupted;
    Described.Device.Name = hostile;
    Described.FirstKadr = 1000;
    NpyFile file(Npy);
    file.Begin(Described);
    for (int16_t i = 0; i < 8; i++)
        file.Add({Numbers{static_cast<int16_t>(i == 7 ? INT16_MAX : i), static_cast<int16_t>(-i), 99}, {}});
    const Verdict ended = {
        End::Interrupted, hostile, 1008, UntilInterrupted, {hostile}, {{1, 1003, 4, GapReason::CutShort}}, 0};
    file.Finish(ended);
    const nlohmann::json npy = Reported(Npy);
    const std::string page = Content(Page);
    EXPECT_EQ(page.find("alert('\""), std::string::npos);
    EXPECT_EQ(page.find("\xE2\x80\xA8"), std::string::npos);
    EXPECT_NE(page.find("<html lang=\"en\">"), std::string::npos);
    EXPECT_EQ(npy.at("channels")[0].at("name"), hostile);
    EXPECT_EQ(npy.at("doubts")[0], hostile);
    EXPECT_EQ(npy.at("gaps"), nlohmann::json({{1, 1003, 4, 1}}));
    EXPECT_EQ(npy.at("owners")[1], nlohmann::json({{"module", 1}, {"slot", 5}, {"channels", {1, 2}}}));
    EXPECT_EQ(npy.at("ended"), "interrupted");
    const auto& second = npy.at("channels")[1];
    EXPECT_EQ((std::vector<double>{second["min"], second["max"], second["mean"], second["count"]}),
              (std::vector<double>{0.5, 4, 1.75, 4}));
    EXPECT_NEAR(second["deviation"].get<double>(), std::sqrt((1.25 * 1.25 + .75 * .75 + .25 * .25 + 2.25 * 2.25) / 4),
                1e-12);
    EXPECT_EQ(npy.at("channels")[0].at("limits"), 1);
    EXPECT_TRUE(npy.at("channels")[2].at("mean").is_null());
    // The same from text, where the names of the columns allow it.
    for (const char* style : {"plain", "excel", "excel-ru"}) {
        const std::string csv = Folder + "/a.csv";
        ASSERT_EQ(RunCommandLine({"convert", Npy, "-q", "-o", csv, "--csv", style}), ExitCode::Success);
        const nlohmann::json text = Reported(csv, " --lang ru");
        for (const char* same : {"gaps", "rate", "first", "rows", "ended", "doubts", "start", "wanted"})
            EXPECT_EQ(text.at(same), npy.at(same)) << same << style;
        EXPECT_EQ(text.at("owners")[1]["channels"], nlohmann::json({1})) << style;
        for (size_t i = 0; i < 3; i++) {
            for (const char* same : {"name", "unit", "count", "min", "max", "decimals"}) {
                if (i == 2 && *same == 'd') continue;
                EXPECT_EQ(text["channels"][i][same], npy["channels"][i][same]) << same << i << style;
            }
        }
        EXPECT_NE(Content(Page).find("<html lang=\"ru\">"), std::string::npos);
    }
    // A part of the text, what stands in its place, and what is said.
    ASSERT_EQ(RunCommandLine({"convert", Npy, "-q", "-o", Folder + "/a.csv"}), ExitCode::Success);
    const std::string csv = Content(Folder + "/a.csv");
    const std::tuple<const char*, const char*, const char*> faults[] = {
        {"# Rate", "# Ratte", "no recording of this recorder"},
        {"time (s),", "time (s)\t", "no recording of this recorder"},
        {"\n1.001,", "\n1.002,", "row 2: the time does not follow"},
        {"\n1.001,", "\nx,", "row 2: there is no time"},
        {"\n1.001,0.10,", "\n1.001,0.1,", "row 2: a column's values"},
        {"\n1.001,0.10,", "\n1.001,x,", "row 2: a value is no number"},
        {"\n1.001,0.10,", "\n1.001,0.10,,", "row 2: a value is no number, or one too many"},
        {"\n1.001,0.10,", "\n1.001,", "row 2: a row has 3 values"},
        {"\n1.001,0.10,", "\n1.001,99999999.99,", "row 2: a value is far"},
        {"\n1.001,", "\n# x\n1.001,", "rows follow the remarks"}};
    for (const auto& [part, instead, said] : faults) {
        std::string text = csv;
        std::ofstream(Folder + "/b.csv") << text.replace(text.find(part), std::string(part).size(), instead);
        Said.clear();
        EXPECT_EQ(RunCommandLine({"report", Folder + "/b.csv", "-q", "-o", Page}), ExitCode::Input) << said;
        EXPECT_NE(Said.find(said), std::string::npos) << said << Said;
    }
    // Cut off, within a row and within a kadr: what is whole counts.
    std::ofstream(Folder + "/b.csv") << csv.substr(0, csv.find("\n1.005,") + 12);
    const nlohmann::json part = Reported(Folder + "/b.csv");
    EXPECT_EQ(std::pair(part.at("rows"), part.at("ended")), std::pair(nlohmann::json(5), nlohmann::json("unknown")));
    EXPECT_EQ(part.at("gaps"), nlohmann::json({{0, 1003, 2, 0}}));
    std::filesystem::resize_file(Npy, std::filesystem::file_size(Npy) - 1);
    const nlohmann::json cut = Reported(Npy);
    EXPECT_EQ(std::pair(cut.at("rows"), cut.at("promised")), std::pair(nlohmann::json(7), nlohmann::json(8)));
    for (const std::string& same : {Npy, Json, Folder + "/../recorder_arrays/a.json"}) {
        EXPECT_EQ(RunCommandLine({"report", Npy, "-o", same}), ExitCode::Usage) << same;
    }
}

// Noise can't be made smaller, and what is said can be long.
TEST_F(RecorderArrays, BecomePagesOfBoundedSize) {
    std::mt19937 random(3);
    Described.Task.Channels.clear();
    for (int16_t i = 0; i < 32; i++) Described.Task.Channels.push_back({i, std::string(60000, '<'), "", "", 1, 0});
    NpyFile file(Npy);
    file.Begin(Described);
    Numbers samples(size_t{32} * 1000);
    for (int i = 0; i < 110; i++) {
        for (int16_t& sample : samples) sample = static_cast<int16_t>(random());
        file.Add({samples, {}});
    }
    file.Finish({End::Interrupted, "", 110000, 9, {}, {}, 0});
    EXPECT_EQ(Reported(Npy).at("binRows"), 4);
    EXPECT_LE(std::filesystem::file_size(Page), PageMax);
    EXPECT_GE(std::filesystem::file_size(Page), PageMax / 2);
}

}  // namespace
}  // namespace corvane::recorder
