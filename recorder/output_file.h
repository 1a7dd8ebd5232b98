// A file that is written through a large buffer, and that others see whole or not at all: until it is complete it has
// another name, its own and ".part", and an older file of its name stays what it was. Two recorders can't write one
// file. Every failure throws Failure with ExitCode::Output.
#pragma once

#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <string_view>

namespace corvane::recorder {

constexpr const char* StandardOutput = "-";  // as the name of a file

class OutputFile {
public:
    // StandardOutput, a pipe or a device is written on directly. A recording that another run has left incomplete is
    // put aside, and the user told where. `whileOpen`: a file of this program that is being written; one and the same
    // file throws Failure with ExitCode::Usage.
    // `beside`: a file that belongs to it, for ReplaceFile to write; it is put aside and gets its name together with
    // it.
    explicit OutputFile(const std::string& path, const std::string& beside = "", const OutputFile* whileOpen = nullptr);
    // Tells where the data is when the file was not completed.
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    const std::string& Path() const { return Path_; }
    // The present name of the file that belongs to this one.
    std::string BesidePart() const { return Beside_ + ".part"; }
    // Throws when it is none that could be renamed.
    void RefuseDevice() const;
    // Bytes to append to; it reaches the file with the next Write.
    std::string& Buffer() { return Buffer_; }
    // Writes the buffer once it is large enough to be worth a call.
    void WriteWhenLarge();
    void Write();
    // Writes, and waits until what was written is on the disk.
    void WriteToDisk();
    // Writes over the file's first bytes, which were written before.
    void Overwrite(const std::string& start);
    // Bytes of the file and of the buffer.
    int64_t Bytes() const { return BytesWritten_ + static_cast<int64_t>(Buffer_.size()); }
    // Writes the rest and gives the file its name.
    void Complete();

    [[noreturn]] static void ThrowNotWritten(const std::string& path);

private:
    struct Closer {
        void operator()(std::FILE* file) const { std::fclose(file); }
    };

    void RefuseSameFile(const OutputFile& other) const;
    void RefuseIrreplaceable(const std::string& target) const;
    void OpenPart();
    void PutAside() const;
    [[noreturn]] static void ThrowFailure(const std::string& what);

    std::string Path_;    // as the user gave it
    std::string Target_;  // where it leads to
    std::string Part_;    // the name until it is complete; empty: written on directly
    std::string Beside_;  // the name of the file that belongs to it; empty: none
    std::string Buffer_;
    int64_t BytesWritten_ = 0;
    std::unique_ptr<std::FILE, Closer> File_;  // null: standard output
};

// Replaces a file, or makes a new one, in one step: whoever reads it finds the old text or the new one. False: the old
// one is still there; see SystemErrorText.
bool ReplaceFile(const std::string& path, std::string_view text);

}  // namespace corvane::recorder
