// The text of a CSV recording: comment lines with "# ", a header row, then one row per kadr. Comma separated, decimal
// point, UTF-8.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "recorder/channel.h"
#include "recorder/taken_kadrs.h"

namespace corvane::recorder {

// Quoted when it holds a comma, a quote or a line break.
std::string CsvField(const std::string& text);

// The times of a recording's rows.
class TimeColumn {
public:
    explicit TimeColumn(double rate);
    // The time of a kadr, in s; 0 is the recording's first.
    void Append(std::string& text, int64_t kadr) const;

private:
    int64_t Period_;  // us
    int Decimals_;
};

// Writes rows; keeps count of them for the time column.
class CsvWriter {
public:
    CsvWriter(std::vector<Channel> channels, double rate);

    // Appends the remarks as comment lines, and the header row.
    void AppendHeader(std::string& text, std::span<const std::string> remarks) const;

    // Appends a row for each kadr. A value has the fewest decimals that keep it within a twentieth of a code of the
    // exact one; the cell of a sample that was not measured stays empty.
    void AppendRows(std::string& text, const TakenKadrs& kadrs);

private:
    void AppendValue(std::string& text, size_t channel, int16_t sample) const;

    std::vector<Channel> Channels_;
    std::vector<uint8_t> MissingBits_;  // of each channel
    std::vector<int> Decimals_;         // of each channel
    double Rate_;                       // Hz
    TimeColumn Times_;
    int64_t Row_ = 0;
};

}  // namespace corvane::recorder
