// A recorded array as a report reads it.
#pragma once

#include <string>
#include <vector>

#include "recorder/npy_recording.h"
#include "recorder/page/collected.h"
#include "recorder/page/page_subject.h"

namespace corvane::recorder {

// Kadrs in which the same columns were not measured, from one to the next run's first.
struct MissingFrom {
    int64_t First = 0;
    Columns Missing = 0;
};

// The runs that these gaps make of the kadrs from one on. In whatever order the gaps are, and however they overlap.
std::vector<MissingFrom> RunsOf(std::span<const Gap> gaps, const std::vector<Columns>& columnsOfModule, int64_t first);

class NpySource {
public:
    using Sample = int16_t;

    explicit NpySource(const std::string& path);

    int64_t Kadrs() const { return Input_.Kadrs(); }
    ColumnPlan Plan() const;
    // False: that was all.
    bool Read(KadrBlock<int16_t>& block);
    // To be asked when all was read.
    PageSubject Subject() const;

private:
    NpyRecording Input_;
    std::string Path_;
    std::vector<Columns> ColumnsOfModule_;
    std::vector<MissingFrom> Runs_;
    size_t Run_ = 0;
    int64_t Kadr_ = 0;  // of the file, the next to be read
};

}  // namespace corvane::recorder
