#include "recorder/output_file.h"

#include <fmt/format.h>
#include <cerrno>
#include <cstring>

#include "recorder/console.h"
#include "recorder/failure.h"

namespace corvane::recorder {
namespace {

constexpr size_t LargeBuffer = 256 * 1024;  // bytes

}  // namespace

OutputFile::OutputFile(std::string path) : Path_(std::move(path)), File_(OpenForWriting(Path_)) {
    if (!File_) ThrowFailure("can't be created. Choose a folder that exists and that you may write to");
    Buffer_.reserve(2 * LargeBuffer);
}

void OutputFile::WriteWhenLarge() {
    if (Buffer_.size() >= LargeBuffer) Write();
}

void OutputFile::Write() {
    if (std::fwrite(Buffer_.data(), 1, Buffer_.size(), File_.get()) != Buffer_.size()) {
        ThrowFailure("can't be written on. What was written until then is kept; free some disk space");
    }
    Buffer_.clear();
}

void OutputFile::Close() {
    Write();
    if (std::fclose(File_.release()) != 0) ThrowFailure("can't be completed. Free some disk space");
}

void OutputFile::ThrowFailure(const char* what) const {
    const int error = errno;
    throw Failure(ExitCode::Output, fmt::format("{} {} ({}).", Path_, what, std::strerror(error)));
}

}  // namespace corvane::recorder
