// Groups of kadrs in a row of values each.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "recorder/channel.h"
#include "recorder/csv_writer.h"
#include "recorder/options.h"
#include "recorder/taken_kadrs.h"

namespace corvane::recorder {

// What the rows have for these channels: a column for each, or one for its lowest and one for its highest value.
std::vector<Channel> ThinnedColumns(const std::vector<Channel>& channels, Thinning thinning);

class Thinner {
public:
    // `every` kadrs make a row; the first one begins with kadr `first`.
    Thinner(const std::vector<Channel>& channels, Thinning thinning, int64_t every, int64_t first);

    // Appends a row for each group that is complete now. What was not measured counts for nothing.
    void AppendRows(std::string& text, const CsvWriter& writer, const TakenKadrs& kadrs);
    // Appends the last group, which may have fewer kadrs.
    void AppendRest(std::string& text, const CsvWriter& writer);
    int64_t Rows() const { return Rows_; }

private:
    struct Group {
        int64_t Kadrs = 0;  // measured ones
        int64_t Sum = 0;
        int16_t Min = INT16_MAX;
        int16_t Max = INT16_MIN;
    };

    const std::vector<Channel>& Channels_;
    std::vector<uint8_t> MissingBits_;
    Thinning Thinning_;
    int64_t Every_;
    int64_t First_;        // kadr of the present group
    int64_t InGroup_ = 0;  // kadrs of the present group so far
    int64_t Rows_ = 0;
    std::vector<Group> Groups_;    // one for each channel
    std::vector<double> Samples_;  // of a row
};

}  // namespace corvane::recorder
