// A recording as CSV text, in each style of this recorder, as a report reads it. Whatever else a file holds throws
// Failure with ExitCode::Input.
#pragma once

#include <cstdio>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "recorder/page/collected.h"
#include "recorder/page/page_subject.h"

namespace corvane::recorder {

class CsvSource {
public:
    using Sample = int32_t;

    explicit CsvSource(const std::string& path);

    ColumnPlan Plan() const;
    // False: that was all.
    bool Read(KadrBlock<int32_t>& block);
    // To be asked when all was read.
    PageSubject Subject();

private:
    struct Closer {
        void operator()(std::FILE* file) const { std::fclose(file); }
    };
    // The numbers of a column: its first one, and how many decimals all of them have.
    struct Column {
        int Decimals = -1;  // nothing was measured yet
        int64_t First = 0;  // in units of the last decimal
    };
    // Rows in which the same columns were missing.
    struct Missing {
        int64_t First;
        int64_t Rows;
        Columns Which;
    };

    bool Refill();
    void ReadHead();
    bool ReadRow(std::string_view row, KadrBlock<int32_t>& block);
    void ReadTime(const char*& place, const char* end);
    int32_t ReadNumber(const char*& place, const char* end, Column& column);
    void NoteMissing(Columns missing, KadrBlock<int32_t>& block);
    void NameOwners();
    void MakeGaps();
    [[noreturn]] void Throw(const std::string& what) const;
    [[noreturn]] void ThrowRow(const std::string& what) const;

    std::string Path_;
    std::unique_ptr<std::FILE, Closer> File_;
    std::string Text_;  // what was read and not yet understood, from Place_ on
    size_t Place_ = 0;
    bool AllRead_ = false;
    bool Tail_ = false;  // the rows are over
    size_t TailSize_ = 0;
    PageSubject Subject_;
    char Separator_ = ',';
    char Point_ = '.';
    Columns Never_ = 0;
    int64_t Period_ = 0;  // us, from one kadr to the next
    int64_t Rows_ = 0;
    std::vector<Column> Columns_;
    std::vector<Missing> Missing_;
};

}  // namespace corvane::recorder
