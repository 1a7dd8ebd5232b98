// A file that is written through a large buffer. Every failure throws Failure with ExitCode::Output.
#pragma once

#include <cstdio>
#include <memory>
#include <string>

namespace corvane::recorder {

class OutputFile {
public:
    explicit OutputFile(std::string path);

    // Text to append to; it reaches the file with the next Write.
    std::string& Buffer() { return Buffer_; }
    // Writes the buffer once it is large enough to be worth a call.
    void WriteWhenLarge();
    void Write();
    void Close();

private:
    struct Closer {
        void operator()(std::FILE* file) const { std::fclose(file); }
    };

    [[noreturn]] void ThrowFailure(const char* what) const;

    std::string Path_;
    std::string Buffer_;
    std::unique_ptr<std::FILE, Closer> File_;
};

}  // namespace corvane::recorder
