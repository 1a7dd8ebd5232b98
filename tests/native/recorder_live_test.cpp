// Values for those who watch while they come: line protocol, and what the monitor shows.
#include <fmt/format.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <thread>
#include <utility>

#include "recorder/command_line.h"
#include "recorder/influx_file.h"
#include "recorder/monitor_picture.h"
#include "recorder/options.h"
#include "recorder/progress.h"
#include "recorder/text_columns.h"
#include "simulator/control.h"
#include "simulator/sequence.h"
#include "tests/recorder/test_console.h"

namespace corvane::recorder {
namespace {

using Numbers = std::vector<int16_t>;

TEST(RecorderInflux, WaitsForItsReaderWhileThereIsOne) {
    ASSERT_EQ(LtrSim_Configure(SequenceCrate({3}, "1.0").c_str()), 0) << LtrSim_Message();
    Said.clear();
    StandardOutputText.clear();
    // While the reader sleeps, the driver keeps what comes, which is no silence of the module.
    Reader = [slow = true]() mutable {
        if (std::exchange(slow, StandardOutputText.find("\nltr27") == std::string::npos)) {
            std::this_thread::sleep_for(std::chrono::milliseconds(400));
        }
        return true;
    };
    const std::vector<std::string> record = {
        "record", "-r", "1000", "-n", "900", "-c", "2", "-o", "-", "--format", "influx", "--stall-timeout", "300ms"};
    EXPECT_EQ(RunCommandLine(record), ExitCode::Success) << Said;
    const auto lines = std::ranges::count(StandardOutputText, '\n');
    EXPECT_EQ(lines - std::ranges::count(StandardOutputText, '#'), 900);
    Reader = [] { return StandardOutputText.find("\nltr27") == std::string::npos; };
    EXPECT_EQ(RunCommandLine(record), ExitCode::Output);
    EXPECT_NE(Said.find("Standard output can't be written on"), std::string::npos) << Said;
    Reader = nullptr;
    EXPECT_EQ(LtrSim_OpenConnections(), 0);
}

TEST(RecorderInflux, TextOfARecording) {
    Recording recording;
    recording.Device.Name = "a,b=c d\\";  // a backslash would take the next comma with it
    recording.Device.CrateSerial = "1T\n";
    recording.StartTime = std::chrono::sys_time<std::chrono::milliseconds>(std::chrono::milliseconds(1800000000123));
    recording.FirstKadr = 10;
    recording.Task.Rate = static_cast<double>(1000.0F / 3);
    recording.Task.Modules = {{0, 3}, {1, 0}};
    recording.Task.Channels = {
        {0, "a", "", "\u00B0C", 10, 0}, {17, "b", "", "", -1, 0.5}, {18, "Empty", "", "V", 1, 0}};
    StandardOutputText.clear();
    InfluxFile file("-");
    file.Begin(recording);
    file.Add({Numbers{1, 2, 0, -3, 4, 0}, std::vector<uint8_t>{MissingBit(0) | NeverMeasured, NeverMeasured}});
    file.Add({Numbers{5, 6, 7}, {}});
    const auto cut = GapReason::CutShort;
    const auto so = [](std::vector<Gap> gaps) {
        return Verdict{End::Complete, "", 3, 3, {"doubtful"}, std::move(gaps), 0};
    };
    file.Flush(so({{0, 9, 1, cut}}));
    file.Flush(so({{0, 9, 2, cut}, {1, 12, 1, cut}}));
    file.Finish(so({{0, 9, 2, cut}, {1, 12, 1, cut}}));
    EXPECT_NE(StandardOutputText.find(", serial 1T , "), std::string::npos) << "no line of its own";
    const std::string device = ",crate=1T_,device=a\\,b\\=c\\ d_", zero = "ltr27,channel=0" + device,
                      other = "ltr27,channel=17" + device + " value=", gap = "ltr27_gaps" + device + ",module=";
    EXPECT_EQ(StandardOutputText.substr(StandardOutputText.find("\nltr27") + 1),
              other + "-1.5 1800000000153000000\n" +                                         //
                  zero + ",slot=3,unit=\u00B0C value=-0.30 1800000000156000000\n" +          //
                  other + "-3.5 1800000000156000000\n" +                                     //
                  zero + ",slot=3,unit=\u00B0C value=0.50 1800000000159000000\n" +           //
                  other + "-5.5 1800000000159000000\n" +                                     //
                  "ltr27,channel=18" + device + ",unit=V value=7.0 1800000000159000000\n" +  //
                  gap + "0,slot=3 from=1800000000150000000i,to=1800000000150000000i,seconds=0.003,kadrs=1i," +
                  "reason=\"a receive was cut short\" 1800000000150000000\n" + gap +
                  "0,slot=3 from=1800000000150000000i,to=1800000000153000000i,seconds=0.006,kadrs=2i," +
                  "reason=\"a receive was cut short\" 1800000000150000000\n" + gap +
                  "1 from=1800000000159000000i,to=1800000000159000000i,seconds=0.003,kadrs=1i," +
                  "reason=\"a receive was cut short\" 1800000000159000000\n# doubtful\n");
}

TEST(RecorderProgress, FitsItsLine) {
    // Kadrs, how many are wanted, seconds, kadrs that wait, columns, and the line.
    const int64_t year = 36000000000;
    const std::tuple<int64_t, int64_t, double, std::optional<int32_t>, size_t, const char*> cases[] = {
        {370, 1000, 0.37, 12, 79, "[#######             ]  37 %  370 of 1000 kadrs  0.4 s  12 unread"},
        {370, 1000, 0.37, 12, 0, " 37 %  370 of 1000 kadrs  0.4 s  12 unread"},
        {2000000000, 2419200000, 2000000.9, 65536, 79,
         "[#########   ]  82 %  2000000000 of 2419200000 kadrs  555:33:20 h  65536 unread"},
        {year, year, 36e6, 65536, 79,
         "[########] 100 %  36000000000 of 36000000000 kadrs  10000:00:00 h  65536 unread"},
        {year, UntilInterrupted, 36e6, 65536, 79, "36000000000 kadrs  10000:00:00 h  65536 unread"},
        {370, 1000, 0.37, 12, 39, " 37 %  370 of 1000 kadrs  0.4 s  12 unr"},
        {5, 10, 3599.96, {}, 39, "[###   ]  50 %  5 of 10 kadrs  3600.0 s"}};
    for (const auto& [kadrs, wanted, seconds, unread, columns, line] : cases) {
        EXPECT_EQ(ProgressLine(kadrs, wanted, seconds, unread, columns), line);
    }
}

// A picture of four channels: in order, silent, at its limit and without a mezzanine.
MonitorState Pictured() {
    MonitorState state;
    state.Device = "LTR27";
    state.Crate = "3T1";
    state.Rate = 1000;
    state.Kadrs = 12345;
    state.Channels = {{{0, "03_1-1_H-27U10", "", "V", 1638.4, 0}, 8192, {-16384, 8192}, ""},
                      {{1, "\u0442\u0435\u0440\u043C\u043E\u043F\u0430\u0440\u0430 \u65E5", "", "\u00B0C", -163.84, 50},
                       std::nullopt,
                       {-100, 200},
                       "silent"},
                      {{2, "a\x1B[2J", "", "mA", 1638.4, 10}, 16383, {16383, 16383}, "high"},
                      {{19, "Empty", "", "", 1, 0}, std::nullopt, {}, "empty"}};
    return state;
}

TEST(RecorderMonitor, PictureHasRoomInAnyTerminal) {
    // Columns, rows, and the picture.
    const std::tuple<size_t, size_t, std::string> cases[] = {
        {20, 9,
         "LTR27 3T1, 1000 Hz,\nEverything measured.\nNo     Value\n 0   5.00000\n 1         - silent\n"
         " 2  19.99939 high\n19         - empty\n"},
        {40, 6,
         "LTR27 3T1, 1000 Hz, 12.3 s\nEverything measured.\nNo Name               Value Unit\n"
         " 0 03_1-1_H-27U10   5.00000 V\n 1 \u0442\u0435\u0440\u043C\u043E\u043F\u0430\u0440\u0430 \u65E5           - "
         "\u00B0C   silent\n"
         "and 2 more channels below\n"},
        {80, 5,
         "LTR27 3T1, 1000 Hz, 12.3 s\nEverything measured.\n"
         "No Name               Value Unit Range                      Min       Max\n"
         " 0 03_1-1_H-27U10   5.00000 V    [------------#     ] -10.00000   5.00000\nand 3 more channels below\n"},
        {200, 7,
         "LTR27 3T1, 1000 Hz, 12.3 s\nEverything measured.\n"
         "No Name               Value Unit Range                                            Min       Max\n"
         " 0 03_1-1_H-27U10   5.00000 V    [-----------------------------#          ] -10.00000   5.00000\n"
         " 1 \u0442\u0435\u0440\u043C\u043E\u043F\u0430\u0440\u0430 \u65E5           - \u00B0C   [                   - "
         " "
         "                  ]   48.7793   50.6104 silent\n"
         " 2 a?[2J           19.99939 mA   [                                       #]  19.99939  19.99939 high\n"
         "19 (empty)                -      [                                        ]         -         - empty\n"},
        {7, 4, "LTR27 3\nEveryth\nNo\nand 4 m\n"},
        {1, 1, "L\n"}};
    for (const auto& [columns, rows, picture] : cases) {
        std::string text;
        const std::vector<std::string> lines = MonitorPicture(Pictured(), columns, rows);
        for (const std::string& line : lines) {
            EXPECT_LE(ColumnsOf(line), columns) << line;
            EXPECT_EQ(line.find('\x1B'), std::string::npos) << line;
            text += line + '\n';
        }
        EXPECT_LE(lines.size(), rows);
        EXPECT_EQ(text, picture) << columns;
    }
}

TEST(RecorderMonitor, MarksWhatIsNotInOrder) {
    RecordingTask task;
    task.Channels = {{0, "a", "", "V", 1, 0}, {17, "b", "", "V", 1, 0}, {18, "Empty", "", "", 1, 0}};
    task.Modules = {{0, 3}, {1, 5}};
    task.Rate = 10;
    const int16_t low = LiveChannel::Lowest, high = LiveChannel::Highest;
    const auto cut = GapReason::CutShort, silent = GapReason::NothingCame;
    // Samples of kadrs, the driver's list of gaps then, whether nothing comes at all, and "newest min max mark" of each
    // channel but the last, which is always the same. What was filled in is never shown, only its gap.
    const std::tuple<Numbers, std::vector<Gap>, bool, std::string> steps[] = {
        {{}, {}, false, "- - - , - - - "},
        {{5, 6, 9, 7, 8, 9}, {}, false, "7 5 7 , 8 6 8 "},
        {{1, low, 9, 2, high, 9}, {}, false, "2 1 7 , 16383 -16384 16383 low"},
        {{3, high, 9}, {}, false, "3 1 7 , 16383 -16384 16383 high"},
        {{4, 99, 9, 4, 99, 9}, {{1, 5, 2, silent}}, false, "4 1 7 , - -16384 16383 silent"},
        {{99, 8, 9, 4, 8, 9}, {{1, 5, 2, silent}, {0, 7, 1, cut}}, false, "4 1 7 gap, 8 -16384 16383 gap"},
        {{4, 8, 9}, {{1, 5, 2, silent}, {0, 7, 1, cut}, {1, 9, 1, cut}}, false, "4 1 7 gap, - -16384 16383 gap"},
        {Numbers(57, 4), {}, false, "4 1 7 , 4 -16384 16383 gap"},
        {{4, 4, 9}, {}, false, "4 1 7 , 4 -16384 16383 "},
        {{}, {}, true, "- 1 7 silent, - -16384 16383 silent"}};
    RecordedGaps gaps;
    LiveValues values(task);
    for (const auto& [samples, listed, nothing, expected] : steps) {
        if (!samples.empty()) values.Add({samples, gaps.Add(static_cast<int64_t>(samples.size() / 3), listed)});
        std::string text;
        for (const LiveChannel& channel : values.Look(gaps, nothing)) {
            const auto number = [](bool known, int16_t sample) { return known ? std::to_string(sample) : "-"; };
            const bool some = !channel.Total.Empty();
            text += fmt::format("{}{} {} {} {}", text.empty() ? "" : ", ",
                                number(channel.Newest.has_value(), channel.Newest.value_or(0)),
                                number(some, channel.Total.Min), number(some, channel.Total.Max),
                                channel.Mark.In(Language::English));
        }
        EXPECT_EQ(text, expected + ", - - - empty");
    }
    EXPECT_EQ(values.Missing(), 4);
}

TEST(RecorderMonitor, DrawsUntilItIsInterrupted) {
    ASSERT_EQ(LtrSim_Configure(SequenceCrate({3, 5}, "1.0").c_str()), 0) << LtrSim_Message();
    ASSERT_EQ(LtrSim_AddFault("slot = 5\ncall = 'LTR27_Recv'\nafter = 8\nerror = -12"), 0) << LtrSim_Message();
    std::vector<std::string> drawn;
    Drawn = &drawn;
    // After ten seconds it is late.
    Interrupt = [&] { return drawn.size() > 50 || drawn.back().find("- V    silent") != std::string::npos; };
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(RunCommandLine({"monitor", "-r", "1000", "-c", "0,17"}), ExitCode::Interrupted) << Said;
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    Drawn = nullptr;
    Interrupt = nullptr;
    ASSERT_GE(drawn.size(), 4u);
    EXPECT_LE(static_cast<double>(drawn.size()), 3 + 5 * seconds);
    EXPECT_EQ(drawn.front() + drawn.back(), "openedclosed");
    EXPECT_NE(drawn[1].find("0 03_1-1_SEQ"), std::string::npos) << drawn[1];
    EXPECT_EQ(drawn[1].find("silent"), std::string::npos) << drawn[1];
    EXPECT_NE(drawn.at(drawn.size() - 2).find("- V    silent"), std::string::npos) << drawn[1];
    EXPECT_EQ(LtrSim_OpenConnections(), 0);
}

}  // namespace
}  // namespace corvane::recorder
