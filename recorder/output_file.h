// A file that is written through a large buffer, and that others see whole or not at all: until it is complete it has
// another name, its own and ".part", and an older file of its name stays what it was. Two recorders can't write one
// file. Every failure throws Failure with ExitCode::Output.
#pragma once

#include <cstdio>
#include <memory>
#include <string>

namespace corvane::recorder {

constexpr const char* StandardOutput = "-";  // as the name of a file

class OutputFile {
public:
    // StandardOutput, a pipe or a device is written on directly. A recording that another run has left incomplete is
    // put aside, and the user told where. `whileOpen`: a file of this program that is being written; one and the same
    // file throws Failure with ExitCode::Usage.
    explicit OutputFile(const std::string& path, const OutputFile* whileOpen = nullptr);
    // Tells where the data is when the file was not completed.
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    // Text to append to; it reaches the file with the next Write.
    std::string& Buffer() { return Buffer_; }
    // Writes the buffer once it is large enough to be worth a call.
    void WriteWhenLarge();
    void Write();
    // Writes, and waits until what was written is on the disk.
    void WriteToDisk();
    // Writes the rest and gives the file its name.
    void Complete();

private:
    struct Closer {
        void operator()(std::FILE* file) const { std::fclose(file); }
    };

    void RefuseSameFile(const OutputFile& other) const;
    void RefuseIrreplaceable() const;
    void OpenPart();
    void PutAside() const;
    [[noreturn]] void ThrowNotWritten() const;
    [[noreturn]] static void ThrowFailure(const std::string& what);

    std::string Path_;    // as the user gave it
    std::string Target_;  // where it leads to
    std::string Part_;    // the name until it is complete; empty: written on directly
    std::string Buffer_;
    bool Written_ = false;
    std::unique_ptr<std::FILE, Closer> File_;  // null: standard output
};

}  // namespace corvane::recorder
