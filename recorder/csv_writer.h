// The text of a CSV recording: comment lines with "# ", a header row, then one row per kadr. Comma separated, decimal
// point, UTF-8.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "recorder/channel.h"

namespace corvane::recorder {

// Quoted when it holds a comma, a quote or a line break.
std::string CsvField(const std::string& text);

// Writes rows; keeps count of them for the time column.
class CsvWriter {
public:
    CsvWriter(std::vector<Channel> channels, double rate);

    // Appends the remarks as comment lines, and the header row.
    void AppendHeader(std::string& text, std::span<const std::string> remarks) const;

    // Appends the rows of whole kadrs, one after another. A value has the fewest decimals that keep it
    // within a twentieth of a code of the exact one.
    void AppendRows(std::string& text, std::span<const int16_t> samples);

private:
    void AppendValue(std::string& text, size_t channel, int16_t sample) const;

    std::vector<Channel> Channels_;
    std::vector<int> Decimals_;  // of each channel
    double Rate_;                // Hz
    int64_t Period_;             // us
    int TimeDecimals_;
    int64_t Row_ = 0;
};

}  // namespace corvane::recorder
