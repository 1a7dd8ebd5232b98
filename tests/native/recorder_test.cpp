// The recorder's own rules: what it accepts on the command line, and what it writes.
#include <fmt/format.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>

#include "recorder/command_line.h"
#include "recorder/csv_writer.h"
#include "recorder/envelope.h"
#include "recorder/failure.h"
#include "recorder/options.h"
#include "recorder/output_file.h"
#include "recorder/recorded_gaps.h"
#include "recorder/silence_watch.h"
#include "recorder/svg_plot.h"
#include "standins/registry_hooks.h"
#include "tests/native/driver_fixture.h"
#include "tests/recorder/test_console.h"

namespace corvane::recorder {
namespace {

using Numbers = std::vector<int16_t>;

TEST(RecorderOptions, ListsAndTimesAreUnderstoodOrRefused) {
    const std::pair<const char*, ChannelChoice> lists[] = {{"5-5", {false, false, {5}}},
                                                           {"17,2,0-2", {false, false, {0, 1, 2, 17}}},
                                                           {"32767", {false, false, {32767}}},
                                                           {"all", {true, false, {}}},
                                                           {"fitted,7", {false, true, {7}}}};
    for (const auto& [text, choice] : lists) EXPECT_EQ(ParseChannelList(text), choice) << text;
    for (const char* text : {"", "1,", "3-1", "-1", "1-", "1-2-3", "a", "1 2", "32768", "1.5"}) {
        EXPECT_THROW(ParseChannelList(text), Failure) << text;
    }
    const std::pair<const char*, double> times[] = {{"500ms", 0.5}, {"10s", 10},    {"2m", 120},     {"2min", 120},
                                                    {"1.5h", 5400}, {"0.25", 0.25}, {"1h30m", 5400}, {"1m500ms", 60.5}};
    for (const auto& [text, seconds] : times) EXPECT_DOUBLE_EQ(ParseDuration(text), seconds) << text;
    const std::pair<const char*, SplitChoice> splits[] = {
        {"1h", {3600, 0}}, {"90", {90, 0}}, {"1kB", {0, 1000}}, {"1.5GB", {0, 1500000000}}};
    for (const auto& [text, choice] : splits) EXPECT_EQ(ParseSplit(text), choice) << text;
    for (const char* text : {"", "0s", "1B", "999B", "0.1kB", "1GiB", "-1GB", "1GB1", "nanGB", "1e10TB", "1h1MB"}) {
        EXPECT_THROW(ParseSplit(text), Failure) << text;
    }
    for (const char* text : {"", "s", "-1s", "1x", "1h30", "30 1h", "nan", "10001h", "1e999", "1,5h"}) {
        EXPECT_THROW(ParseDuration(text), Failure) << text;
    }
}

TEST(RecorderOptions, CommandLines) {
    for (const char* line : {"",
                             "reord",
                             "record -o a -p -",
                             "record",
                             "record -o a -r 0",
                             "record -o a -r 5kHz",
                             "record -o a -d 0",
                             "list -o a",
                             "settings -o a",
                             "settings list",
                             "record -o a -n 0",
                             "record -o a -n 1x",
                             "record -o a -n 5 -d 1s",
                             "record -o a --csv de",
                             "record -o a.npy --csv excel",
                             "record -o a --format influx --csv excel",
                             "record -o a --format lp",
                             "record -o a --format npy",
                             "record -o a.npy --format influx",
                             "record -o a.NPY -p a.json",
                             "record -o - --split 1h",
                             "convert a.npy",
                             "convert a.npy -o b.npy",
                             "convert a.npy -o b --means",
                             "convert a.npy -o b --every 0",
                             "convert a.npy -o b --every 2 --means --minmax",
                             "convert a.npy -o b --from 2s --to 2s",
                             "convert a.npy -o b --server 1.2.3.4",
                             "report a.npy",
                             "report a.npy -o b.npy",
                             "report a.npy -o b --lang de"}) {
        std::istringstream words(line);
        const std::vector<std::string> arguments(std::istream_iterator<std::string>(words), {});
        EXPECT_THROW(ParseCommandLine(arguments), Failure) << line;
    }
    const Options options =
        ParseCommandLine({"record", "-c", "4", "--rate", "250hz", "-c", "fitted,5", "-o", "a b.csv"});
    EXPECT_EQ(options.Channels, ChannelChoice({false, true, {4, 5}}));
    EXPECT_EQ(options.Rate, 250);
    EXPECT_EQ(options.OutputPath, "a b.csv");
    EXPECT_FALSE(options.Duration);
    EXPECT_EQ(options.Kadrs, UntilInterrupted);
    EXPECT_EQ(options.StallTimeout, 60);
    EXPECT_NE(ParseCommandLine({"--help"}).Text.find("\n  ltr27rec settings\n"), std::string::npos);
}

TEST(RecorderCommandLine, ExitCodesAndWordsTellHowItEnded) {
    const std::string csv = testing::TempDir() + "recorder_test.csv";
    // Makes the crate the second one, after another that has one module.
    const char* const two = "[[server.crate.module]]\nid = 'LTR27'\nslot = 1\n[[server.crate]]\nserial = 'CRATE2'";
    // What the crate does, a fault, what follows the -o of a recording or another command, the exit code, what is said,
    // and the CSV's last line.
    const std::tuple<const char*, const char*, std::string, ExitCode, const char*, const char*> cases[] = {
        {"", "", "", ExitCode::Success, "200 kadrs of 28 channels at 1000 Hz (0.2 s), complete\n", "0.199,"},
        {"start_marks = 'never'", "", " --stall-timeout 200ms", ExitCode::Incomplete, "(0 s), incomplete: 0 of 200 k",
         "# incomplete: 0 of 200 kadrs, no data came for 0.2 s"},
        {"", "call = 'LTR27_ProcessData'\nafter = 4\ntimes = 1\nerror = -1", " -q", ExitCode::Incomplete,
         "Warning: not measured: 64 kadrs (0.064 s) of the module in slot 3, in 1 gap\n", "# note: after a gap"},
        {"", "call = 'LTR27_Recv'\nafter = 4\nerror = -12", " -d 5s --stall-timeout 400ms", ExitCode::Incomplete,
         "of 5000 kadrs, nothing was measured for 0.4 s", "# incomplete: "},
        {"", "slot = 5\ncall = 'LTR27_Recv'\nafter = 2\nerror = -12", " -d 700ms --stall-timeout 400ms",
         ExitCode::Incomplete, "(0.7 s), all kadrs written, but not all measured\n", "# note: after a gap"},
        {"", "slot = 5\ncall = 'LTR27_Recv'\nafter = 2\ntimes = 5\nerror = -12", " -d 600ms", ExitCode::Incomplete,
         "The module in slot 5 sends nothing: check the crate, its cable and the LTR server.\n"
         "The module in slot 5 sends again after 0.",
         "# note: after a gap"},
        {"", "slot = 5\ncall = 'LTR27_Recv'\nerror = -12", " -c 0-13", ExitCode::Success, "complete\n", "0.199,"},
        {"", "", " -c 13-14", ExitCode::Incomplete, "all kadrs written, but not all measured\n",
         "# not measured: 1 of the channels, without mezzanine"},
        {"", "", " --interrupt", ExitCode::Interrupted, "interrupted: 0 of 200 kadrs\n",
         "# interrupted: 0 of 200 kadrs"},
        {"", "", "record -c 1 -o " + csv + " --interrupt", ExitCode::Interrupted, ", interrupted: 0 kadrs\n",
         "# interrupted: 0 kadrs"},
        {"", "", "record -r 1000 -n 3 -c 1 -o " + csv, ExitCode::Success, ": 3 kadrs of 1 channel at", "0.002,"},
        {"", "", "convert no.npy -o " + csv, ExitCode::Input, "no.npy can't be opened (", ""},
        {"", "call = 'LTR27_ADCStart'\nerror = -5", "", ExitCode::StartFailed, "could not be started. Error '-5'", ""},
        {"", "call = 'LTR_GetCrates'\nerror = -5", "", ExitCode::NoDevice, "ltr27rec: No ", ""},
        {"", "", "/no.csv", ExitCode::Output, "can't be created", ""},
        {"", "", " -c 32", ExitCode::Usage, "Channel 32 does not exist", ""},
        {"", "", "record -r 1000 -d 1ms -c 1 -o " + csv, ExitCode::Success, ": 1 kadr of 1 channel at", "0.000,"},
        {"", "", " -p " + testing::TempDir() + "./recorder_test.csv", ExitCode::Usage, "are one file", ""},
        {"", "", "list", ExitCode::Success,
         "LTR27 (SIMULATED): 32 channels, 15 bits, up to 1000 Hz, now set to 10 Hz\nServer: 127.0.0.1\n"
         "Crate: LTR030, serial CRATE1, USB\nModule: LTR27, slot 3, serial CRATE1-3, firmware v1.2.3.4\n"
         "Module: LTR27, slot 5, serial CRATE1-5, firmware v1.2.3.4\nSTART mark: Make Internal\nLibrary: Corvane",
         ""},
        {two, "", "list", ExitCode::NoDevice, "Name one of them:\n  --crate CRATE1\n  --crate CRATE2\n", ""},
        {two, "", "list --crate CRATE2", ExitCode::Success, "serial CRATE2", ""},
        {two, "", "list --crate X", ExitCode::NoDevice, "number X. Found:\n  --crate CRATE1\n  --crate CRATE2\n", ""},
        {"", "", "list --server 10.0.0.1", ExitCode::NoDevice, "running (at 10.0.0.1)", ""},
        {"", "", "list --server 10.0.0", ExitCode::Usage, "--server 10.0.0: give an address", ""},
        {"", "", "list --dialogs", ExitCode::Usage, "This build has no windows", ""},
        {"", "", "monitor", ExitCode::Usage, "standard output is none. Use --once", ""},
        {"", "", "monitor -r 1000 -c 3 --once", ExitCode::Success, "\nEverything measured.\nNo Name ", ""},
        {"", "slot = 5\ncall = 'LTR27_Recv'\nafter = 2\nerror = -12", "monitor -r 1000 -c 0,17 --once",
         ExitCode::Incomplete, "] -10.00000 -10.00000 silent\n", ""},
        {"", "", "monitor -r 1000 -c 13-14 --once --json", ExitCode::Incomplete,
         "\"name\":\"Empty\",\"unit\":\"\",\"value\":null,\"min\":null,\"max\":null,\"mark\":\"empty\"}]}\n", ""},
        {"start_marks = 'never'", "", "monitor --json --interrupt", ExitCode::Interrupted, "", ""},
        {"", "", "reord", ExitCode::Usage, "no command \"reord\"", ""},
        {"", "", "settings", ExitCode::Usage, "This build has no windows", ""}};
    for (auto [crate, fault, rest, code, said, lastLine] : cases) {
        platform::ClearRegistry();
        ASSERT_EQ(LtrSim_Configure(SequenceCrate({3, 5}, "1.0", crate).c_str()), 0) << LtrSim_Message();
        ASSERT_TRUE(*fault == '\0' || LtrSim_AddFault(fault) == 0) << LtrSim_Message();
        Said.clear();
        StandardOutputText.clear();
        const bool interrupted = rest.ends_with(" --interrupt");
        Interrupt = [=] { return interrupted; };
        if (interrupted) rest.resize(rest.rfind(" --"));
        const bool records = rest.empty() || rest.find_first_of(" /") == 0;
        std::istringstream words(records ? "record -r 1000 -o " + csv + rest : rest);
        if (records && rest.find(" -d ") == std::string::npos) words.str(words.str() + " -d 200ms");
        std::ofstream(csv).close();
        EXPECT_EQ(RunCommandLine({std::istream_iterator<std::string>(words), {}}), code) << rest;
        EXPECT_NE((Said + StandardOutputText).find(said), std::string::npos) << rest << Said << StandardOutputText;
        std::string line, last;
        for (std::ifstream file(csv); std::getline(file, line);) last = line;
        EXPECT_TRUE(last.starts_with(lastLine)) << rest << last;
        EXPECT_EQ(LtrSim_OpenConnections(), 0) << rest;
    }
    Interrupt = nullptr;
}

TEST(RecorderFiles, TakeTheirNamesWhenTheyAreComplete) {
    namespace fs = std::filesystem;
    const fs::path folder = fs::path(testing::TempDir()) / "recorder_files";
    const fs::path csv = folder / "a.csv", part = folder / "a.csv.part", link = folder / "link";
    const auto write = [](const fs::path& path, const char* text) { std::ofstream(path) << text; };
    const auto read = [](const fs::path& path) {
        std::ifstream file(path);
        return std::string(std::istreambuf_iterator<char>(file), {});
    };
    fs::remove_all(folder);
    fs::create_directory(folder);
    fs::create_symlink("a.csv", link);
    write(csv, "old");
    write(part, "left");
    ASSERT_EQ(LtrSim_Configure(SequenceCrate({3}, "1.0").c_str()), 0) << LtrSim_Message();
    Said.clear();
    Interrupt = [&] {
        EXPECT_EQ(read(csv), "old");
        for (const fs::path& name : {csv, link, folder / "." / "a.csv"}) {
            EXPECT_THROW(OutputFile{name}, Failure) << name;
        }
        return false;
    };
    const auto record = [](const std::string& output) {
        return RunCommandLine({"record", "-r", "1000", "-d", "100ms", "-o", output});
    };
    EXPECT_EQ(record(link), ExitCode::Success) << Said;
    EXPECT_TRUE(read(csv).starts_with("# Device: "));
    EXPECT_TRUE(fs::is_symlink(link));
    EXPECT_FALSE(fs::exists(part));
    EXPECT_EQ(read(part.string() + ".1"), "left");
    EXPECT_NE(Said.find("a.csv.part.1"), std::string::npos) << Said;

    EXPECT_EQ(RunCommandLine({"record", "-o", csv, "-p", link}), ExitCode::Usage);
    EXPECT_FALSE(fs::exists(part));  // nothing is left of what did not begin

    for (const bool symbolic : {true, false}) {  // somebody's link: it leads to another file
        std::ofstream(folder / "other").close();
        symbolic ? fs::create_symlink("other", part) : fs::create_hard_link(folder / "other", part);
        EXPECT_EQ(record(csv), ExitCode::Output);
        EXPECT_TRUE(fs::is_empty(folder / "other") && fs::remove(part)) << symbolic;
    }

    Interrupt = [&] { return fs::remove_all(csv) > 9 || !fs::create_directories(csv / "x"); };
    EXPECT_EQ(record(csv), ExitCode::Output);
    EXPECT_NE(Said.find("Everything is in " + part.string()), std::string::npos) << Said;
    EXPECT_NE(read(part).find("\n0.099,"), std::string::npos);
    EXPECT_EQ(record(csv), ExitCode::Output);  // a folder from the start

    Interrupt = nullptr;
    Said.clear();
    StandardOutputText.clear();
    EXPECT_EQ(record("-"), ExitCode::Success);
    EXPECT_TRUE(StandardOutputText.starts_with("# Device: "));
    EXPECT_NE(StandardOutputText.rfind("\n0.099,"), std::string::npos);
    EXPECT_EQ(StandardOutputText.find("complete"), std::string::npos);
    EXPECT_NE(Said.find(": 100 kadrs of 14 channels"), std::string::npos) << Said;
}

TEST(RecorderCommandLine, MoreGapsThanTheDriverListsAreNoSilence) {
    const std::string csv = testing::TempDir() + "recorder_test.csv";
    const std::string fault = "[[fault]]\nslot = 3\nshort = 100\n";  // a part of every block is measured
    ASSERT_EQ(LtrSim_Configure((SequenceCrate({3, 5}, "0") + fault).c_str()), 0) << LtrSim_Message();
    Said.clear();
    platform::SkipSleeps = true;
    EXPECT_EQ(RunCommandLine({"record", "-r", "1000", "-d", "6000s", "-c", "0", "-o", csv, "--stall-timeout", "300ms"}),
              ExitCode::Incomplete);
    platform::SkipSleeps = false;
    EXPECT_NE(StandardOutputText.find("6000000 kadrs of 1 channel at 1000 Hz (6000 s), all kadrs written"),
              std::string::npos)
        << StandardOutputText;
    EXPECT_EQ(Said.find("sends nothing"), std::string::npos) << Said;
}

TEST(RecorderCsv, EveryValueIsTheNearestOfItsDecimals) {
    // Scale, offset, decimals: as many as show a tenth of a code.
    const std::tuple<double, double, int> cases[] = {
        {1638.4, -1e-9, 5},   {1638.4F, 0, 5},  {131.072, 125, 4},  {-1638.4, 0, 5}, {1000, 0, 4},
        {0.01, 5, 0},         {16, 0, 3},       {-16, 1.0 / 32, 3}, {64, -0.5, 3},   {1, 0.25, 1},
        {0.1, -0.5, 0},       {0.2, 0.5, 1},    {3.0F, 1e6, 2},     {3, 1e9, 2},     {1e-30, 0, 0},
        {409.6F, -273.15, 4}, {1e11, 1e-7, 12}, {1e15, 1e-12, 12},  {7e8F, -3, 10},  {1.0 / 3, 2.0 / 3, 1}};
    Numbers samples;
    for (int sample = INT16_MIN; sample <= INT16_MAX; sample++) samples.push_back(static_cast<int16_t>(sample));
    for (const auto& [scale, offset, decimals] : cases) {
        CsvWriter csv({{0, "a", "", "V", scale, offset}}, 1000);
        std::string rows, expected;
        csv.AppendRows(rows, {samples, {}});
        for (size_t row = 0; row < samples.size(); row++) {
            double value = samples[row] / scale + offset;
            if (std::abs(value) < 0.5 * std::pow(10.0, -decimals)) value = 0;  // never "-0.000"
            expected += fmt::format("{:.3f},{:.{}f}\n", static_cast<double>(row) / 1000, value, decimals);
        }
        ASSERT_TRUE(rows == expected) << scale << ' ' << offset;
    }
    for (const double rate : {1000.0, 1000.0 / 3, 4.0, 37.5, 999999.0}) {
        const int64_t period = std::llround(1e6 / rate);
        for (int64_t kadr = 0; kadr < (int64_t{1} << 45) / period; kadr += 1 + kadr / 7) {
            const int64_t time = kadr * period;
            const std::string text = fmt::format("{}.{:06}", time / 1000000, time % 1000000);
            ASSERT_EQ(TimeColumn(rate).Text(kadr), text.substr(0, text.size() - (period % 1000 == 0 ? 3 : 0)));
        }
    }
}

TEST(RecorderCsv, TextOfARecording) {
    CsvWriter csv({{0, "a,\"b\"", "", "V", 1, 0}, {16, "c", "", "", 10, 0}}, static_cast<double>(1000.0F / 3));
    std::string text;
    csv.AppendHeader(text, std::vector<std::string>{"Rate: 333.333 Hz"});
    EXPECT_EQ(text, "# Rate: 333.333 Hz\ntime (s),\"a,\"\"b\"\" (V)\",c\n");
    text.clear();
    csv.AppendRows(text, {Numbers{1, -2, 3, 15}, {}});
    csv.AppendRows(text, {Numbers{5, 0}, {}});
    csv.AppendRows(text, {Numbers{6, 7, 8, 9}, std::vector<uint8_t>{MissingBit(1), MissingBit(0) | NeverMeasured}});
    EXPECT_EQ(text, "0.000,1.0,-0.20\n0.003,3.0,1.50\n0.006,5.0,0.00\n0.009,6.0,\n0.012,,0.90\n");
}

TEST(RecorderEnvelope, KeepsExtremesWhenBinsDouble) {
    for (const size_t kadrs : {Envelope::Capacity, 5 * Envelope::Capacity + 3}) {
        Envelope envelope({1, 1});
        std::vector<int16_t> first;  // of channel 0; channel 1 is its mirror image
        for (size_t i = 0; i < kadrs; i++) {
            first.push_back(static_cast<int16_t>(static_cast<int>(i * 7919 % 30011) - 15000));
            envelope.Add({Numbers{first[i], static_cast<int16_t>(-first[i])}, {}});
        }
        const auto width = static_cast<size_t>(envelope.BinKadrs());
        EXPECT_EQ(envelope.Kadrs(), static_cast<int64_t>(kadrs));
        EXPECT_EQ(envelope.Bins(), (kadrs + width - 1) / width);
        EXPECT_LE(envelope.Bins(), Envelope::Capacity);
        EXPECT_TRUE(width == 1 || envelope.Bins() > Envelope::Capacity / 2);
        for (size_t bin = 0; bin < envelope.Bins(); bin++) {
            const auto begin = first.begin() + static_cast<ptrdiff_t>(bin * width);
            const auto [low, high] = std::minmax_element(
                begin, begin + std::min<ptrdiff_t>(first.end() - begin, static_cast<ptrdiff_t>(width)));
            ASSERT_EQ(envelope.At(0, bin).Min, *low);
            ASSERT_EQ(envelope.At(0, bin).Max, *high);
            ASSERT_EQ(envelope.At(1, bin).Min, -*high);
            ASSERT_EQ(envelope.At(1, bin).Max, -*low);
        }
    }
}

TEST(RecorderRecordedGaps, AreThoseOfTheKadrsTaken) {
    // Kadrs that are taken, the driver's list then, the modules' bits in these kadrs, and all gaps by then.
    const auto cut = GapReason::CutShort, silent = GapReason::NothingCame, various = GapReason::Various;
    const std::tuple<int64_t, std::vector<Gap>, std::string, std::vector<Gap>> steps[] = {
        {4, {{0, 2, 4, silent}, {1, 3, 1, cut}}, "0013", {{0, 2, 2, silent}, {1, 3, 1, cut}}},
        {2, {{0, 2, 4, silent}, {1, 3, 2, various}}, "31", {{0, 2, 4, silent}, {1, 3, 1, cut}, {1, 4, 1, various}}},
        {2, {}, "00", {{0, 2, 4, silent}, {1, 3, 1, cut}, {1, 4, 1, various}}}};
    RecordedGaps gaps;
    for (const auto& [kadrs, listed, bits, all] : steps) {
        std::string text;
        for (const uint8_t missing : gaps.Add(kadrs, listed)) text += static_cast<char>('0' + (missing & 3));
        EXPECT_EQ(text, bits);
        EXPECT_EQ(gaps.Gaps(), all);
        EXPECT_EQ(gaps.NewestReason(0), (bits.back() & 1) != 0 ? std::optional(silent) : std::nullopt);
    }
    for (int64_t kadr = 8; kadr < 30000; kadr += 2) gaps.Add(2, std::vector<Gap>{{0, kadr, 1, cut}});
    EXPECT_EQ(gaps.Gaps().size(), RecordedGaps::KeptMax);
    EXPECT_EQ(gaps.Gaps().back().First + gaps.Gaps().back().Kadrs, 29999) << "nothing is forgotten";
    EXPECT_EQ(gaps.Gaps().back().Reason, various);
}

TEST(RecorderSilence, IsToldAtOnceButNotAllTheTime) {
    const auto cut = GapReason::CutShort, silent = GapReason::NothingCame, unusable = GapReason::NotProcessed;
    // Seconds, how the module is then, and what is told; an empty text: nothing.
    const char *nothing = "5 sends nothing: ", *again = "in slot 5 sends again after ";
    const std::tuple<double, std::optional<GapReason>, std::string> steps[] = {
        {0, {}, ""},
        {1, cut, ""},
        {2, silent, nothing},
        {3, silent, ""},
        {4, cut, ""},
        {5.2, {}, again + std::string("3.2 s.")},
        {6, unusable, "can't be processed"},
        {7, silent, nothing},
        {8, {}, "2.0 s."},
        {9, silent, nothing},
        {10, {}, again},
        {11, silent, nothing},
        {12, {}, again},
        {12.5, silent, nothing},
        {13, {}, again},
        // From here on each has to wait until ten seconds more have passed.
        {14, silent, ""},
        {15, {}, ""},
        {16, silent, ""},
        {22, silent, "(Silences not told meanwhile: 1.)"},
        {23, {}, "7.0 s."},
        {24, silent, ""}};
    SilenceWatch watch(5);
    for (const auto& [seconds, missing, told] : steps) {
        const std::chrono::milliseconds time(3600000 + static_cast<int>(1000 * seconds));
        const std::string text = watch.Observe(missing, SilenceWatch::Clock::time_point(time));
        EXPECT_TRUE(text.empty() == told.empty() && text.find(told) != std::string::npos) << seconds << text;
    }
}

TEST(RecorderPlot, BreaksTheCurveAndShadesWhereNothingWasMeasured) {
    Envelope data({MissingBit(0)});
    data.Add({Numbers{1, 2, 3, 4, 5}, std::vector<uint8_t>{0, 0, MissingBit(0), MissingBit(0), 0}});
    const std::vector<Channel> channels = {{0, "a", "", "V", 1, 0}};
    const std::vector<RecordedModule> modules = {{0, 5}};
    const std::vector<Gap> gaps = {
        {0, 2, 1, GapReason::CutShort}, {0, 3, 1, GapReason::NothingCame}, {1, 0, 5, GapReason::NothingCame}};
    const std::string svg = RenderPlot({"", "", 10, channels, data, modules, gaps});
    // The plot is 936 pixels wide from 78 on, half a second; the gaps are one span, half way to their neighbours.
    EXPECT_NE(svg.find("<path fill='url(#gap0)' d='M358.8 82.0H733.2V502.0H358.8Z'/>"), std::string::npos) << svg;
    EXPECT_NE(svg.find(">not measured, slot 5</text>"), std::string::npos) << svg;
    EXPECT_NE(svg.find(">0.2 s in 2 gaps</text>"), std::string::npos) << svg;
    const size_t curve = svg.find("<path class='line'");
    const std::string path = svg.substr(curve, svg.find("/>", curve) - curve);
    EXPECT_EQ(std::ranges::count(path, 'M'), 2) << path;
    EXPECT_NE(svg.find("1 \u2026 5 V"), std::string::npos) << svg;
}

TEST(RecorderPlot, EscapesTexts) {
    EXPECT_EQ(EscapeXml("<a & 'b'>\"\x01\xC2\xB1"), "&lt;a &amp; &#39;b&#39;&gt;&quot;\xC2\xB1");
    Envelope data({1});
    data.Add({Numbers{5, 5, 5}, {}});  // a flat line needs an axis too
    const std::vector<Channel> channels = {{0, "a<b", "", "m&V", 100, 0}};
    const std::string svg = RenderPlot({"x<y", "", 10, channels, data});
    for (const char* text : {"a&lt;b", "m&amp;V", "x&lt;y"}) EXPECT_NE(svg.find(text), std::string::npos) << text;
    for (const char* number : {"nan", "inf"}) EXPECT_EQ(svg.find(number), std::string::npos);
}

}  // namespace
}  // namespace corvane::recorder
