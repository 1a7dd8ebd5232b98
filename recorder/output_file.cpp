#include "recorder/output_file.h"

#include <fmt/format.h>
#include <utility>

#include "recorder/console.h"
#include "recorder/failure.h"
#include "recorder/file_system.h"
#include "recorder/messages.h"

namespace corvane::recorder {
namespace {

constexpr size_t LargeBuffer = 256 * 1024;  // bytes
constexpr int LeftoversMax = 1000;

bool Empty(std::FILE* file) {
    return std::fseek(file, 0, SEEK_END) == 0 && std::ftell(file) == 0;
}

}  // namespace

OutputFile::OutputFile(const std::string& path, const std::string& beside, const OutputFile* whileOpen)
    : Path_(path == StandardOutput ? Say("Standard output") : path), Target_(FollowLinks(path)), Beside_(beside) {
    Buffer_.reserve(2 * LargeBuffer);
    if (path == StandardOutput) return;
    if (whileOpen != nullptr) RefuseSameFile(*whileOpen);
    if (KindOf(Target_) != FileKind::Device) {
        RefuseIrreplaceable(Target_);
        if (!Beside_.empty()) RefuseIrreplaceable(Beside_);
        OpenPart();
        return;
    }
    File_.reset(OpenForWriting(Target_));
    if (!File_) ThrowFailure(Say("{} can't be opened for writing", Path_));
}

OutputFile::~OutputFile() {
    if (!File_ || Part_.empty()) return;
    File_.reset();
    if (BytesWritten_ == 0) {
        Remove(Part_);
        return;
    }
    WriteText(stderr, Say("What was written until then is in {}.", Part_) + '\n');
}

void OutputFile::RefuseDevice() const {
    if (!Part_.empty()) return;
    throw Failure(ExitCode::Output, Say("{} is a device or a pipe: this recording needs a file.", Path_));
}

void OutputFile::RefuseSameFile(const OutputFile& other) const {
    const std::string part = Target_ + ".part";
    if (!SameFile(Target_, other.Target_) && (other.Part_.empty() || !SameFile(part, other.Part_))) return;
    throw Failure(ExitCode::Usage,
                  Say("--output {} and --plot {} are one file: give them different ones.", other.Path_, Path_));
}

void OutputFile::RefuseIrreplaceable(const std::string& target) const {
    const FileKind kind = KindOf(target);
    const std::string& name = target == Target_ ? Path_ : target;
    if (kind == FileKind::Folder) {
        throw Failure(ExitCode::Output, Say("{} is a folder. Give the name of a file in it.", name));
    }
    if (kind == FileKind::File && !MayReplace(target)) {
        ThrowFailure(Say("{} can't be replaced: it is write-protected or open in another program", name));
    }
}

void OutputFile::OpenPart() {
    const std::string part = Target_ + ".part";
    constexpr int Tries = 3;  // one file can be left over, and another recorder can come first
    for (int i = 0; i < Tries; i++) {
        bool taken = false;
        File_.reset(OpenAlone(part, taken));
        if (taken) {
            throw Failure(ExitCode::Output, Say("Another recorder is writing {}. Give this one another file.", Path_));
        }
        if (!File_)
            ThrowFailure(Say("{} can't be created. Choose a folder that exists and that you may write to", Path_));
        Part_ = part;
        if (Empty(File_.get())) return;
        PutAside();
    }
    ThrowFailure(Say("{} can't be used: another program keeps it", part));
}

// The lock on the file is kept meanwhile: another recorder that starts now can't mistake a new file for the old one.
void OutputFile::PutAside() const {
    for (int number = 1; number <= LeftoversMax; number++) {
        const std::string name = fmt::format("{}.{}", Part_, number);
        const std::string beside = fmt::format("{}.{}", BesidePart(), number);
        if (KindOf(name) != FileKind::None || (!Beside_.empty() && KindOf(beside) != FileKind::None)) continue;
        if (!Move(Part_, name)) break;
        if (!Beside_.empty() && KindOf(BesidePart()) != FileKind::None && !Move(BesidePart(), beside)) break;
        WriteText(stderr,
                  Say("A recording of {} was ended by force; what there is of it is now in {}.", Path_, name) + '\n');
        return;
    }
    ThrowFailure(
        Say("{} holds a recording that was ended by force, and can't be put aside: rename or delete it", Part_));
}

void OutputFile::WriteWhenLarge() {
    if (Buffer_.size() >= LargeBuffer) Write();
}

void OutputFile::Write() {
    const bool written = File_ ? std::fwrite(Buffer_.data(), 1, Buffer_.size(), File_.get()) == Buffer_.size()
                               : WriteText(stdout, Buffer_);
    if (!written) ThrowNotWritten(Path_);
    BytesWritten_ += static_cast<int64_t>(Buffer_.size());
    Buffer_.clear();
}

void OutputFile::WriteToDisk() {
    Write();
    // A device has no disk, and a pipe would wait for its reader.
    if (!Part_.empty() && !Flush(File_.get())) ThrowNotWritten(Path_);
}

void OutputFile::Overwrite(const std::string& start) {
    const bool written =
        SeekTo(File_.get(), 0) && std::fwrite(start.data(), 1, start.size(), File_.get()) == start.size();
    if (!written || !SeekTo(File_.get(), BytesWritten_)) ThrowNotWritten(Path_);
}

void OutputFile::Complete() {
    Write();
    if (!File_) return;
    if (!Flush(File_.get())) ThrowFailure(Say("{} can't be completed. Free some disk space", Path_));
    const std::string part = std::exchange(Part_, "");
    if (!part.empty() && !MoveOver(part, Target_)) {
        ThrowFailure(Say("{} can't be replaced. Everything is in {}: rename it", Path_, part));
    }
    if (!Beside_.empty() && !MoveOver(BesidePart(), Beside_)) {
        ThrowFailure(Say("{} can't be replaced. Everything is in {}: rename it", Beside_, BesidePart()));
    }
    if (std::fclose(File_.release()) != 0) ThrowFailure(Say("{} can't be completed. Free some disk space", Path_));
}

void OutputFile::ThrowNotWritten(const std::string& path) {
    ThrowFailure(Say("{} can't be written on. See that there is room, and that nobody closes it", path));
}

void OutputFile::ThrowFailure(const std::string& what) {
    const std::string reason = SystemErrorText();
    throw Failure(ExitCode::Output, fmt::format("{} ({}).", what, reason));
}

bool ReplaceFile(const std::string& path, std::string_view text) {
    const std::string fresh = path + ".new";
    Remove(fresh);
    bool taken = false;
    std::FILE* file = OpenAlone(fresh, taken);
    if (file == nullptr) return false;
    const bool replaced =
        std::fwrite(text.data(), 1, text.size(), file) == text.size() && Flush(file) && MoveOver(fresh, path);
    std::fclose(file);
    if (!replaced) Remove(fresh);
    return replaced;
}

}  // namespace corvane::recorder
