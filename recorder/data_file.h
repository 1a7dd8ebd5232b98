// A file that takes a recording's kadrs while they come. Every failure throws Failure with ExitCode::Output.
#pragma once

#include <cstdint>

#include "recorder/output_file.h"
#include "recorder/recording.h"
#include "recorder/taken_kadrs.h"
#include "recorder/verdict.h"

namespace corvane::recorder {

class DataFile {
public:
    explicit DataFile(const std::string& path, const std::string& beside = "") : File(path, beside) {}
    virtual ~DataFile() = default;
    DataFile(const DataFile&) = delete;
    DataFile& operator=(const DataFile&) = delete;

    const OutputFile& Output() const { return File; }

    // The recording, which must outlive this object, has started. To be called before all that follows.
    virtual void Begin(const Recording& recording) = 0;
    virtual void Add(const TakenKadrs& kadrs) = 0;
    // So many more kadrs leave the file, without what Finish adds, within this size.
    virtual int64_t Room(int64_t bytesMax) const = 0;
    // All that was added is on the disk then, and what is known of it.
    virtual void Flush(const Verdict& soFar) = 0;
    // Adds how it ended, and gives the file its name.
    virtual void Finish(const Verdict& verdict) = 0;

protected:
    OutputFile File;
};

}  // namespace corvane::recorder
