// A recorded array and its description, read back. Both may come from anywhere and hold anything: what makes no sense
// throws Failure with ExitCode::Input.
#pragma once

#include <cstdio>
#include <memory>
#include <span>
#include <string>

#include "recorder/npy_format.h"
#include "recorder/recording_json.h"

namespace corvane::recorder {

class NpyRecording {
public:
    // What becomes of an array that has fewer kadrs than its head counts.
    enum class CutOff { Refused, Taken };

    explicit NpyRecording(const std::string& path, CutOff cutOff = CutOff::Refused);

    // Whether the file begins as any NumPy array does. False for what can't be opened.
    static bool IsOne(const std::string& path);

    const recorder::Recording& Recording() const { return Description_.Recording; }
    const recorder::Verdict& Verdict() const { return Description_.Verdict; }
    // The version of the recorder; empty: unknown.
    const std::string& RecordedBy() const { return Description_.RecordedBy; }
    int64_t Kadrs() const { return Kadrs_; }
    // What the head counts.
    int64_t PromisedKadrs() const { return Shape_.Kadrs; }

    // Reads kadrs from number `first` of this file on, which is meant for all of them in order: a large file does not
    // stay in the system's memory.
    void Read(int64_t first, std::span<int16_t> samples);

private:
    struct Closer {
        void operator()(std::FILE* file) const { std::fclose(file); }
    };
    using File = std::unique_ptr<std::FILE, Closer>;

    static File Open(const std::string& path, const std::string& advice);
    void ReadHead(CutOff cutOff);
    void ReadDescription();
    [[noreturn]] static void Throw(const std::string& what);

    std::string Path_;
    File File_;
    NpyShape Shape_;
    int64_t Kadrs_ = 0;
    int64_t Forgotten_ = 0;  // bytes from the start
    Description Description_;
};

}  // namespace corvane::recorder
