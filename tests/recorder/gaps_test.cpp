// Whole recordings of modules that number their kadrs, through the recorder's own command line: what was not measured
// is listed, and nothing else is. Natively on the driver's own object, on Windows through the component.
#include <fmt/format.h>
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <map>
#include <optional>
#include <set>
#include <sstream>
#include <vector>

#include "recorder/command_line.h"
#include "simulator/control.h"
#include "simulator/sequence.h"
#include "tests/recorder/test_console.h"

namespace corvane::recorder {
namespace {

constexpr int Rates[] = {4, 10, 20, 50, 100, 500, 1000};
constexpr size_t Modules = 2;
constexpr std::array<int, Modules> Slots = {3, 5};
constexpr size_t Fitted = 14;  // channels of each module

// A recording of a few blocks, the last one not whole. Each receive asks for a block.
struct Shape {
    explicit Shape(int rate) : Blocks(rate < 10 ? 4 : 6) {
        while (Block * 20 < rate) Block *= 2;
        Kadrs = Blocks * Block - Block / 2;
    }
    int Blocks;
    int Block = 1;  // kadrs
    int Kadrs;
};

struct ExpectedGap {
    int First;  // kadr
    int End;
    int Measured;  // kadrs that the module measured meanwhile, and that were lost
    const char* Reason;
};
using Expected = std::array<std::vector<ExpectedGap>, Modules>;

struct Trouble {
    const char* Name;
    std::string (*Faults)(const Shape&);
    Expected (*Gaps)(const Shape&);
};

constexpr const char* NothingCame = "nothing came";
constexpr const char* CutShort = "a receive was cut short";

const Trouble Troubles[] = {
    {"crate unplugged",
     [](const Shape& shape) {
         const int receives = 2 * (shape.Blocks - 2);
         return fmt::format("[[fault]]\ncrate = 'CRATE1'\ncall = 'LTR27_Recv'\nafter = {}\nunplug = true\n", receives);
     },
     [](const Shape& shape) {
         const ExpectedGap gap = {(shape.Blocks - 2) * shape.Block, shape.Kadrs, 0, NothingCame};
         return Expected{{{gap}, {gap}}};
     }},
    {"one module unplugged",
     [](const Shape&) { return std::string("[[fault]]\nslot = 5\ncall = 'LTR27_Recv'\nafter = 1\nunplug = true\n"); },
     [](const Shape& shape) {
         return Expected{{{}, {{shape.Block, shape.Kadrs, 0, NothingCame}}}};
     }},
    {"crate unplugged and back",
     [](const Shape&) { return std::string("[[fault]]\ncall = 'LTR27_Recv'\nafter = 2\ntimes = 4\nerror = -12\n"); },
     [](const Shape& shape) {
         const ExpectedGap gap = {shape.Block, 3 * shape.Block, 0, NothingCame};
         return Expected{{{gap}, {gap}}};
     }},
    {"a receive cut short inside a kadr",
     [](const Shape& shape) {
         return fmt::format(
             "[[fault]]\nslot = 3\nafter = 1\ntimes = 1\nshort = {}\n"
             "[[fault]]\nslot = 3\ncall = 'LTR27_Recv'\nafter = 2\ntimes = 1\nerror = -12\n",
             16 * (shape.Block / 2) + 7);
     },
     [](const Shape& shape) {
         return Expected{{{{shape.Block + shape.Block / 2, 2 * shape.Block, 1, CutShort}}, {}}};
     }},
    {"blocks that can't be processed",
     [](const Shape&) {
         return std::string("[[fault]]\nslot = 5\ncall = 'LTR27_ProcessData'\nafter = 1\ntimes = 2\nerror = -1\n");
     },
     [](const Shape& shape) {
         return Expected{
             {{}, {{shape.Block, 3 * shape.Block, 2 * shape.Block, "the library could not process what came"}}}};
     }},
};

// Columns of one row of a module, as far as they are filled.
using Cells = std::vector<int>;

struct Csv {
    std::vector<std::array<Cells, Modules>> Rows;
    std::vector<std::string> Remarks;  // below the rows
};

Csv Read(const std::string& path) {
    Csv csv;
    bool rows = false;
    std::string line;
    for (std::ifstream file(path); std::getline(file, line);) {
        if (rows && line.starts_with("# ")) csv.Remarks.push_back(line.substr(2));
        if (rows && !line.starts_with("#")) {
            auto& row = csv.Rows.emplace_back();
            const char* cell = std::strchr(line.c_str(), ',');
            for (size_t column = 0; cell != nullptr; column++, cell = std::strchr(cell + 1, ',')) {
                char* end = nullptr;
                const double volts = std::strtod(cell + 1, &end);
                if (end != cell + 1) row[column / Fitted].push_back(static_cast<int>(std::lround(volts * 1638.4)));
            }
        }
        rows = rows || line.starts_with("time");
    }
    return csv;
}

// The number that the module gave this kadr; none when its channels don't agree on one.
std::optional<int> NumberIn(const Cells& cells) {
    if (cells.size() != Fitted) return std::nullopt;
    for (size_t i = 2; i < Fitted; i++) {
        if (cells[i] != cells[i - 2]) return std::nullopt;
    }
    return (cells[1] + 16384) * 32768 + cells[0] + 16384;
}

std::vector<std::string> GapLines(const Expected& gaps, int rate) {
    std::vector<std::string> lines;
    for (size_t module = 0; module < Modules; module++) {
        for (const ExpectedGap& gap : gaps[module]) {
            lines.push_back(fmt::format("not measured: module {}, slot {}, from {:.3f} to {:.3f}, {:g} s, {}", module,
                                        Slots[module], double(gap.First) / rate, double(gap.End - 1) / rate,
                                        double(gap.End - gap.First) / rate, gap.Reason));
        }
    }
    if (!lines.empty()) {
        lines.push_back("note: after a gap the samples of its module can be late by as much as the gap is long");
    }
    return lines;
}

class RecorderGaps : public testing::Test {
protected:
    ExitCode Record(const std::string& speed, const std::string& faults, int rate, int kadrs, bool keepFilled,
                    const std::string& output = "") {
        const std::string scenario = SequenceCrate({Slots[0], Slots[1]}, speed, "start_mark_kadr = 0") + faults;
        EXPECT_EQ(LtrSim_Configure(scenario.c_str()), 0) << LtrSim_Message();
        Said.clear();
        StandardOutputText.clear();
        std::istringstream line(fmt::format("record -r {} -d {}ms -o {}{}", rate, 1000 * kadrs / rate,
                                            output.empty() ? Path : output, keepFilled ? " --keep-filled" : ""));
        const ExitCode code = RunCommandLine({std::istream_iterator<std::string>(line), {}});
        EXPECT_EQ(LtrSim_OpenConnections(), 0);
        return code;
    }

    const std::string Path = testing::TempDir() + "gaps_test.csv";
};

// Every kadr outside the gaps has its number, and every one inside has none, or one that was there before.
void CheckRows(const Csv& csv, const Expected& gaps, size_t module, bool keepFilled) {
    auto gap = gaps[module].begin();
    int shift = 0;  // by so many kadrs the gaps have put the numbers off
    for (int kadr = 0; kadr < static_cast<int>(csv.Rows.size()); kadr++) {
        const Cells& cells = csv.Rows[static_cast<size_t>(kadr)][module];
        if (gap != gaps[module].end() && kadr == gap->End) {
            shift += gap->Measured - (gap->End - gap->First);
            ++gap;
        }
        const std::optional<int> number = NumberIn(cells);
        if (gap == gaps[module].end() || kadr < gap->First) {
            ASSERT_EQ(number, kadr + shift) << "module " << module;
        } else if (keepFilled) {
            ASSERT_EQ(cells.size(), Fitted);
            ASSERT_TRUE(!number || *number < gap->First + shift || *number > 2 * gap->End) << kadr << ' ' << *number;
            // What was cut off is mid-scale, in the kadr that was cut inside from its eighth channel on.
            const auto zeros = std::count(cells.rbegin(), cells.rend(), 0);
            ASSERT_TRUE(gap->Reason != CutShort || zeros == (kadr == gap->First ? 7 : 14)) << kadr << ' ' << zeros;
        } else {
            ASSERT_TRUE(cells.empty()) << "module " << module << ", kadr " << kadr;
        }
    }
}

TEST_F(RecorderGaps, ListExactlyWhatWasNotMeasured) {
    for (const int rate : Rates) {
        const Shape shape(rate);
        for (const Trouble& trouble : Troubles) {
            const Expected gaps = trouble.Gaps(shape);
            for (const bool keepFilled : {false, true}) {
                SCOPED_TRACE(fmt::format("{} Hz, {}{}", rate, trouble.Name, keepFilled ? ", filled" : ""));
                EXPECT_EQ(Record("0", trouble.Faults(shape), rate, shape.Kadrs, keepFilled), ExitCode::Incomplete);
                Csv csv = Read(Path);
                // A busy machine may be late; that the modules deliver as fast as they are asked is no reason to doubt.
                std::erase_if(csv.Remarks, [](const std::string& remark) {
                    return remark.starts_with("doubtful") && remark.find("ahead of") == std::string::npos;
                });
                EXPECT_EQ(csv.Remarks, GapLines(gaps, rate));
                ASSERT_EQ(csv.Rows.size(), static_cast<size_t>(shape.Kadrs));
                for (size_t module = 0; module < Modules; module++) CheckRows(csv, gaps, module, keepFilled);
            }
        }
    }
}

// The lines of a file that are the same each time.
std::vector<std::string> Lines(const std::string& path) {
    std::vector<std::string> lines;
    std::string line;
    for (std::ifstream file(path); std::getline(file, line);) {
        if (!line.starts_with("# Start: ") && !line.starts_with("# doubtful")) lines.push_back(line);
    }
    return lines;
}

// What stands between two texts of a line.
std::string Between(const std::string& line, const std::string& before, const std::string& after) {
    const size_t start = line.find(before) + before.size();
    return line.substr(start, line.find(after, start) - start);
}

// What a database keeps of a recording: "kadr channel value", and a line as the CSV has it for each gap.
using Points = std::pair<std::set<std::string>, std::set<std::string>>;
Points PointsIn(const std::vector<std::string>& text, int rate) {
    std::set<std::string> values;
    std::map<std::string, std::string> gaps;
    std::optional<int64_t> start;
    for (const std::string& line : text) {
        if (line.starts_with("#")) continue;
        const int64_t time = std::stoll(line.substr(line.rfind(' ')));
        const auto seconds = [&](int64_t at) { return static_cast<double>(at - *start) / 1e9; };
        if (!start) start = time;
        if (line.starts_with("ltr27_gaps,")) {
            const std::string module = Between(line, "module=", ","), from = Between(line, "from=", "i,");
            EXPECT_EQ(std::stoll(from), time);
            gaps[module + from] =
                fmt::format("not measured: module {}, slot {}, from {:.3f} to {:.3f}, {} s, {}", module,
                            Between(line, "slot=", " "), seconds(time), seconds(std::stoll(Between(line, "to=", "i,"))),
                            Between(line, "seconds=", ","), Between(line, "reason=\"", "\""));
            continue;
        }
        const bool first = std::stoi(Between(line, "channel=", ",")) < 16;
        EXPECT_NE(
            line.find(fmt::format(",crate=CRATE1,device=LTR27\\ (SIMULATED),slot={},unit=V value=", first ? 3 : 5)),
            std::string::npos)
            << line;
        EXPECT_EQ((time - *start) % (1000000000 / rate), 0) << line;
        EXPECT_TRUE(values
                        .insert(fmt::format("{} {} {}", (time - *start) / (1000000000 / rate),
                                            Between(line, "channel=", ","), Between(line, "value=", " ")))
                        .second)
            << line;
    }
    std::set<std::string> lines;
    for (const auto& gap : gaps) lines.insert(gap.second);
    return {values, lines};
}

// The same of CSV text.
Points CellsIn(const std::vector<std::string>& csv) {
    std::set<std::string> values, gaps;
    int kadr = 0;
    for (const std::string& line : csv) {
        if (line.starts_with("# not measured")) gaps.insert(line.substr(2));
        if (line[0] < '0' || line[0] > '9') continue;
        std::istringstream cells(line);
        std::string cell;
        std::getline(cells, cell, ',');
        for (size_t column = 0; std::getline(cells, cell, ','); column++) {
            const size_t channel = column < Fitted ? column : column + 2;
            if (!cell.empty()) values.insert(fmt::format("{} {} {}", kadr, channel, cell));
        }
        kadr++;
    }
    return {values, gaps};
}

TEST_F(RecorderGaps, AreTheSameInTextInArraysAndInParts) {
    constexpr int Rate = 100;
    const Shape shape(Rate);
    const std::string base = testing::TempDir() + "gaps_test", split = " --split 100ms";  // ten kadrs
    bool keepFilled = false;
    for (const Trouble& trouble : Troubles) {
        keepFilled = !keepFilled;
        SCOPED_TRACE(fmt::format("{}{}", trouble.Name, keepFilled ? ", filled" : ""));
        for (const std::string& output : {Path, base + ".npy", base + ".lp --format influx", Path + split,
                                          base + ".npy" + split, base + ".lp --format influx" + split}) {
            const std::string faults = trouble.Faults(shape);
            EXPECT_EQ(Record("0", faults, Rate, shape.Kadrs, keepFilled, output), ExitCode::Incomplete) << Said;
        }
        ASSERT_EQ(PointsIn(Lines(base + ".lp"), Rate), CellsIn(Lines(Path)));
        std::vector<std::string> rows, points;
        for (const char* part : {"", "-001", "-002", "-003", "-004", "-005"}) {
            std::vector<std::string> convert = {"convert", base + part + ".npy", "-o", base + ".converted"};
            if (keepFilled) convert.emplace_back("--keep-filled");
            ASSERT_EQ(RunCommandLine(convert), ExitCode::Success) << Said;
            std::vector<std::string> recorded = Lines(base + part + ".csv"), converted = Lines(base + ".converted");
            for (std::string& line : converted) {
                if (line.starts_with("# continued in ")) line.replace(line.size() - 3, 3, "csv");
            }
            ASSERT_EQ(converted, recorded) << part;
            std::ranges::copy(Lines(base + part + ".lp"), std::back_inserter(points));
            if (*part == '\0') points.clear();
            std::erase_if(recorded, [](const std::string& line) { return line[0] < '0' || line[0] > '9'; });
            EXPECT_EQ(recorded.size(), *part == '\0' ? size_t(shape.Kadrs) : *(part + 3) == '5' ? 4u : 10u);
            if (*part != '\0') rows.insert(rows.end(), recorded.begin(), recorded.end());
        }
        std::vector<std::string> whole = Lines(Path);
        ASSERT_EQ(PointsIn(points, Rate).first, CellsIn(whole).first);
        std::erase_if(whole, [](const std::string& line) { return line[0] < '0' || line[0] > '9'; });
        ASSERT_EQ(rows, whole);
    }
}

TEST_F(RecorderGaps, NoneInAGoodRecording) {
    for (const int rate : Rates) {
        const int kadrs = 2 * Shape(rate).Block;
        EXPECT_EQ(Record("1.0", "", rate, kadrs, false), ExitCode::Success) << rate << Said;
        const Csv csv = Read(Path);
        EXPECT_EQ(csv.Rows.size(), static_cast<size_t>(kadrs));
        EXPECT_TRUE(csv.Remarks.empty()) << rate << csv.Remarks.front();
    }
}

TEST_F(RecorderGaps, ManyDontFloodTheTerminal) {
    std::string faults;
    for (int block = 1; block <= 12; block++) {
        faults += fmt::format("[[fault]]\nslot = 3\ncall = 'LTR27_ProcessData'\nafter = {}\ntimes = 1\nerror = -1\n",
                              2 * block);
    }
    EXPECT_EQ(Record("0", faults, 20, 30, false), ExitCode::Incomplete);
    const std::vector<std::string> remarks = Read(Path).Remarks;
    for (size_t gap = 0; gap < 12; gap++) {
        ASSERT_TRUE(remarks.at(gap).starts_with(
            fmt::format("not measured: module 0, slot 3, from {:.3f}", 0.1 * double(gap + 1))))
            << remarks[gap];
        EXPECT_EQ(StandardOutputText.find("  " + remarks[gap]) != std::string::npos, gap < 10) << StandardOutputText;
    }
    EXPECT_NE(StandardOutputText.find("\n  and 2 more gaps"), std::string::npos) << StandardOutputText;
}

}  // namespace
}  // namespace corvane::recorder
