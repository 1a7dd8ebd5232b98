#include "recorder/npy_file.h"

#include <bit>
#include <chrono>
#include <thread>

#include "recorder/file_names.h"
#include "recorder/npy_format.h"
#include "recorder/recording_json.h"

namespace corvane::recorder {
namespace {

static_assert(std::endian::native == std::endian::little, "samples are written as they are in memory");

}  // namespace

NpyFile::NpyFile(const std::string& path) : DataFile(path, DescriptionPath(path)) {
    File.RefuseDevice();
}

void NpyFile::Begin(const Recording& recording) {
    Recording_ = &recording;
    File.Buffer() += Head();
    Verdict nothing;
    nothing.HowItEnded = End::Unknown;
    Flush(nothing);
}

void NpyFile::Add(const TakenKadrs& kadrs) {
    const auto bytes = std::as_bytes(kadrs.Samples);
    File.Buffer().append(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    Kadrs_ += static_cast<int64_t>(kadrs.Samples.size() / Recording_->Task.Channels.size());
    File.WriteWhenLarge();
}

int64_t NpyFile::Room(int64_t bytesMax) const {
    const size_t kadr = sizeof(int16_t) * Recording_->Task.Channels.size();
    return (bytesMax - File.Bytes()) / static_cast<int64_t>(kadr);
}

// The head comes last: it counts the kadrs, and what it counts must be there and be described.
void NpyFile::Flush(const Verdict& soFar) {
    File.WriteToDisk();
    if (Describe(soFar)) File.Overwrite(Head());
}

void NpyFile::Finish(const Verdict& verdict) {
    File.WriteToDisk();
    constexpr int Tries = 20;  // on Windows a file can't be replaced while another program has it open
    for (int i = 0; i < Tries && !Describe(verdict); i++) std::this_thread::sleep_for(std::chrono::milliseconds(100));
    if (!Describe(verdict)) OutputFile::ThrowNotWritten(File.BesidePart());
    File.Overwrite(Head());
    File.Complete();
}

// False: the file on the disk stays as it was, and is tried again next time.
bool NpyFile::Describe(const Verdict& verdict) {
    std::string text = DescriptionText(*Recording_, verdict, Kadrs_);
    if (text == Description_) return true;
    if (!ReplaceFile(File.BesidePart(), text)) return false;
    Description_ = std::move(text);
    return true;
}

std::string NpyFile::Head() const {
    return NpyHead(Kadrs_, Recording_->Task.Channels.size());
}

}  // namespace corvane::recorder
