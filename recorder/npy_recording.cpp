#include "recorder/npy_recording.h"

#include <stdexcept>

#include "recorder/failure.h"
#include "recorder/file_names.h"
#include "recorder/file_system.h"
#include "recorder/messages.h"
#include "recorder/taken_kadrs.h"

namespace corvane::recorder {
namespace {

constexpr size_t HeadSizeMax = 4096;                     // bytes
constexpr int64_t DescriptionSizeMax = 2 * 1024 * 1024;  // bytes; with all gaps that a recording keeps it is shorter
constexpr int64_t ChannelsMax = ModulesMax * ModuleChannels;

// Where memory must be found for each further byte of a large file, reading takes several times as long as where its
// bytes before are forgotten.
constexpr int64_t LargeFile = 1'000'000'000;
constexpr int64_t ForgottenAtOnce = 16 * 1024 * 1024;

}  // namespace

NpyRecording::NpyRecording(const std::string& path, CutOff cutOff) : Path_(path), File_(Open(path, "")) {
    ReadHead(cutOff);
    ReadDescription();
}

bool NpyRecording::IsOne(const std::string& path) {
    const File file(KindOf(path) == FileKind::File ? OpenForReading(path) : nullptr);
    char start[6] = {};
    return file && std::fread(start, 1, sizeof start, file.get()) == sizeof start &&
           std::string_view(start, sizeof start) == "\x93NUMPY";
}

NpyRecording::File NpyRecording::Open(const std::string& path, const std::string& advice) {
    const FileKind kind = KindOf(path);
    if (kind == FileKind::Folder || kind == FileKind::Device) Throw(Say("{} is no file.", path));
    File file(OpenForReading(path));
    if (!file) Throw(Say("{} can't be opened ({}).", path, SystemErrorText()) + advice);
    return file;
}

void NpyRecording::ReadHead(CutOff cutOff) {
    std::string start(HeadSizeMax, '\0');
    start.resize(std::fread(start.data(), 1, start.size(), File_.get()));
    const std::optional<NpyShape> shape = ParseNpyHead(start);
    if (!shape) Throw(Say("{} is no NumPy array of recorded samples: two dimensions of <i2 are wanted.", Path_));
    Shape_ = *shape;
    if (Shape_.Channels < 1 || Shape_.Channels > ChannelsMax) {
        Throw(Say("{} has {} columns: a recording has 1 to {} channels.", Path_, Shape_.Channels, ChannelsMax));
    }
    const int64_t bytes = LengthOf(File_.get()) - static_cast<int64_t>(Shape_.HeadSize);
    const int64_t whole = std::max<int64_t>(bytes, 0) / (static_cast<int64_t>(sizeof(int16_t)) * Shape_.Channels);
    Kadrs_ = std::min(Shape_.Kadrs, whole);
    if (Shape_.Kadrs > whole && cutOff == CutOff::Refused) {
        Throw(Say("{} is cut off: its head counts {} kadrs, and {} are there.", Path_, Shape_.Kadrs, whole));
    }
}

void NpyRecording::ReadDescription() {
    const std::string path = DescriptionPath(Path_);
    const File file = Open(path, ' ' + Say("It belongs to the array, and says what its samples are."));
    const int64_t length = LengthOf(file.get());
    if (length < 0 || length > DescriptionSizeMax)
        Throw(Say("{} is too large for the description of a recording.", path));
    std::string text(static_cast<size_t>(length), '\0');
    text.resize(std::fread(text.data(), 1, text.size(), file.get()));
    try {
        Description_ = ParseDescription(text, Shape_.Kadrs, Shape_.Channels);
    } catch (const std::runtime_error& error) {
        Throw(Say("{} does not describe {}: {}.", path, Path_, error.what()));
    }
}

void NpyRecording::Read(int64_t first, std::span<int16_t> samples) {
    const int64_t place =
        static_cast<int64_t>(Shape_.HeadSize) + first * Shape_.Channels * static_cast<int64_t>(sizeof(int16_t));
    if (!SeekTo(File_.get(), place) ||
        std::fread(samples.data(), sizeof(int16_t), samples.size(), File_.get()) != samples.size()) {
        Throw(Say("{} can't be read on.", Path_));
    }
    const int64_t end = place + static_cast<int64_t>(samples.size_bytes());
    if (end < LargeFile || end - Forgotten_ < ForgottenAtOnce) return;
    Forget(File_.get(), Forgotten_, end - Forgotten_);
    Forgotten_ = end;
}

void NpyRecording::Throw(const std::string& what) {
    throw Failure(ExitCode::Input, what);
}

}  // namespace corvane::recorder
