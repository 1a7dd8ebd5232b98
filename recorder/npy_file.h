// A recording as a NumPy array, and beside it a JSON file that says what its samples are. Both can be read while they
// grow: the head of the array counts only kadrs that are in the file, and whose gaps the JSON file lists.
#pragma once

#include <string>

#include "recorder/data_file.h"

namespace corvane::recorder {

class NpyFile : public DataFile {
public:
    explicit NpyFile(const std::string& path);

    void Begin(const Recording& recording) override;
    void Add(const TakenKadrs& kadrs) override;
    int64_t Room(int64_t bytesMax) const override;
    void Flush(const Verdict& soFar) override;
    void Finish(const Verdict& verdict) override;

private:
    bool Describe(const Verdict& verdict);
    std::string Head() const;

    const Recording* Recording_ = nullptr;
    int64_t Kadrs_ = 0;
    std::string Description_;  // as it is on the disk
};

}  // namespace corvane::recorder
