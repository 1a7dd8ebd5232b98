// A recording as CSV text.
#pragma once

#include <optional>
#include <string>

#include "recorder/csv_writer.h"
#include "recorder/data_file.h"

namespace corvane::recorder {

class CsvFile : public DataFile {
public:
    // `path`: StandardOutput, too.
    CsvFile(const std::string& path, CsvStyle style) : DataFile(path), Style_(style) {}

    void Begin(const Recording& recording) override;
    void Add(const TakenKadrs& kadrs) override;
    int64_t Room(int64_t bytesMax) const override;
    void Flush(const Verdict& soFar) override;
    void Finish(const Verdict& verdict) override;

private:
    CsvStyle Style_;
    const RecordingTask* Task_ = nullptr;
    std::optional<CsvWriter> Writer_;
};

}  // namespace corvane::recorder
