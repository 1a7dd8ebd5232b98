#include "recorder/npy_file.h"

#include <fmt/format.h>
#include <algorithm>
#include <bit>
#include <cctype>
#include <chrono>
#include <thread>

#include "recorder/file_system.h"
#include "recorder/npy_format.h"
#include "recorder/recording_json.h"

namespace corvane::recorder {
namespace {

static_assert(std::endian::native == std::endian::little, "samples are written as they are in memory");

constexpr std::string_view Extension = ".npy";

// Where the file's name has it for the last time.
size_t FindExtension(const std::string& path) {
    std::string lower = path;
    std::ranges::transform(lower, lower.begin(), [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    const size_t place = lower.rfind(Extension);
    const size_t folder = path.find_last_of("/\\");
    return folder != std::string::npos && place < folder ? std::string::npos : place;
}

}  // namespace

bool IsNpy(const std::string& path) {
    const size_t place = FindExtension(path);
    return place != std::string::npos && place + Extension.size() == path.size();
}

std::string DescriptionPath(const std::string& npyPath) {
    const std::string path = FollowLinks(npyPath);
    const size_t place = FindExtension(path);
    return place == std::string::npos ? path + ".json" : path.substr(0, place) + ".json" + path.substr(place + 4);
}

NpyFile::NpyFile(const std::string& path) : DataFile(path, DescriptionPath(path)) {
    File_.RefuseDevice();
}

void NpyFile::Begin(const Recording& recording) {
    Recording_ = &recording;
    File_.Buffer() += Head();
    Verdict nothing;
    nothing.HowItEnded = End::Unknown;
    Flush(nothing);
}

void NpyFile::Add(const TakenKadrs& kadrs) {
    const auto bytes = std::as_bytes(kadrs.Samples);
    File_.Buffer().append(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    Kadrs_ += static_cast<int64_t>(kadrs.Samples.size() / Recording_->Task.Channels.size());
    File_.WriteWhenLarge();
}

int64_t NpyFile::Room(int64_t bytesMax) const {
    const size_t kadr = sizeof(int16_t) * Recording_->Task.Channels.size();
    return (bytesMax - File_.Bytes()) / static_cast<int64_t>(kadr);
}

// The head comes last: it counts the kadrs, and what it counts must be there and be described.
void NpyFile::Flush(const Verdict& soFar) {
    File_.WriteToDisk();
    if (Describe(soFar)) File_.Overwrite(Head());
}

void NpyFile::Finish(const Verdict& verdict) {
    File_.WriteToDisk();
    constexpr int Tries = 20;  // on Windows a file can't be replaced while another program has it open
    for (int i = 0; i < Tries && !Describe(verdict); i++) std::this_thread::sleep_for(std::chrono::milliseconds(100));
    if (!Describe(verdict)) OutputFile::ThrowNotWritten(File_.BesidePart());
    File_.Overwrite(Head());
    File_.Complete();
}

// False: the file on the disk stays as it was, and is tried again next time.
bool NpyFile::Describe(const Verdict& verdict) {
    std::string text = DescriptionText(*Recording_, verdict, Kadrs_);
    if (text == Description_) return true;
    if (!ReplaceFile(File_.BesidePart(), text)) return false;
    Description_ = std::move(text);
    return true;
}

std::string NpyFile::Head() const {
    return NpyHead(Kadrs_, Recording_->Task.Channels.size());
}

}  // namespace corvane::recorder
