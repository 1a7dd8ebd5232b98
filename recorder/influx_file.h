// A recording as InfluxDB line protocol: a point of the measurement ltr27 for each sample that was measured, and one of
// ltr27_gaps for each gap. What is written twice is one point to the database: same tags, same time.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "recorder/data_file.h"
#include "recorder/fixed_point.h"

namespace corvane::recorder {

class InfluxFile : public DataFile {
public:
    // `path`: StandardOutput, too.
    explicit InfluxFile(const std::string& path) : DataFile(path) {}

    void Begin(const Recording& recording) override;
    // What was added is on its way at once: somebody watches it.
    void Add(const TakenKadrs& kadrs) override;
    int64_t Room(int64_t bytesMax) const override;
    void Flush(const Verdict& soFar) override;
    void Finish(const Verdict& verdict) override;

private:
    struct Series {
        std::string Start;  // measurement, tags and the field's name
        FixedPoint Number;
        uint8_t MissingBit;
    };

    void AppendRemark(std::string remark);
    int64_t TimeOf(int64_t kadr) const;  // ns since 1970
    void AppendKadr(const int16_t* samples, uint8_t missing);
    void AppendGaps(const std::vector<Gap>& gaps);

    const Recording* Recording_ = nullptr;
    std::string DeviceTags_;
    std::vector<Series> Series_;         // one for each channel
    std::vector<int64_t> WrittenKadrs_;  // of each gap, as it was last written
    int64_t Kadr_ = 0;                   // the next one
};

// As the value of a tag. What the protocol can't hold becomes "_": a backslash would hide what ends the value.
std::string EscapeTag(std::string_view text);

}  // namespace corvane::recorder
