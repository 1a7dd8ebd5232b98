// The text of a CSV recording: comment lines with "# ", a header row, then one row per kadr. UTF-8.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "recorder/channel.h"
#include "recorder/fixed_point.h"
#include "recorder/taken_kadrs.h"

namespace corvane::recorder {

// Who is to read the text: programs, or Excel in a country with decimal points or with decimal commas.
struct CsvStyle {
    char Separator = ',';
    char Point = '.';
    bool Mark = false;  // the bytes at the start by which Excel knows UTF-8
};
constexpr CsvStyle PlainCsv;
constexpr CsvStyle ExcelCsv = {',', '.', true};
constexpr CsvStyle RussianExcelCsv = {';', ',', true};

// Quoted when it holds the separator, a quote or a line break.
std::string CsvField(const std::string& text, char separator);

// Of values at so many samples per unit: the fewest whose last place is no larger than a tenth of a sample.
int DecimalsFor(double scale);

// The times of a recording's rows.
class TimeColumn {
public:
    static constexpr size_t LengthMax = 40;  // bytes that Write may touch
    explicit TimeColumn(double rate, char point = '.');
    // The time of a kadr, in s; 0 is the recording's first. Returns the end of what was written.
    char* Write(char* text, int64_t kadr) const;
    std::string Text(int64_t kadr) const;

private:
    int64_t Period_;  // us
    int Decimals_;
    char Point_;
};

// Writes rows; keeps count of them for the time column.
class CsvWriter {
public:
    // `firstKadr`: the number of the first row's.
    CsvWriter(std::vector<Channel> channels, double rate, CsvStyle style = PlainCsv, int64_t firstKadr = 0);

    // Appends the remarks as comment lines, and the header row.
    void AppendHeader(std::string& text, std::span<const std::string> remarks) const;

    // Appends a row for each kadr. A value has the fewest decimals that keep it within a twentieth of a code of the
    // exact one; the cell of a sample that was not measured stays empty.
    void AppendRows(std::string& text, const TakenKadrs& kadrs);

    // Appends a row of means or extremes of samples, a NaN where nothing was measured, at the time of a kadr.
    void AppendRow(std::string& text, int64_t kadr, std::span<const double> samples) const;
    // No row is longer, in bytes.
    int64_t RowLengthMax() const;

private:
    std::vector<Channel> Channels_;
    CsvStyle Style_;
    std::vector<uint8_t> MissingBits_;  // of each channel
    std::vector<FixedPoint> Numbers_;   // of each channel
    TimeColumn Times_;
    int64_t Kadr_;                   // of the next row
    mutable std::vector<char> Row_;  // room for the longest
};

}  // namespace corvane::recorder
