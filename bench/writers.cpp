// Writes a recording's worth of samples as fast as it can, through the recorder's files or in the plain way, for
// recorder_bench.py to time.
//   writers npy|csv|influx FILE KADRS   the recorder's
//   writers copy FILE KADRS             memcpy and write, as little as an array needs
//   writers fmt FILE KADRS              fmt and fwrite, text of the same numbers
#include <fmt/format.h>
#include <unistd.h>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <exception>
#include <functional>
#include <memory>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

#include "recorder/recording_files.h"

namespace corvane::bench {

namespace {

using namespace recorder;
using Clock = std::chrono::steady_clock;

constexpr double Rate = 1000;       // Hz
constexpr int64_t BlockKadrs = 64;  // of one Add, as the driver brings them
constexpr auto FlushInterval = std::chrono::seconds(2);
constexpr size_t BufferBytes = 1024 * 1024;

RecordingTask TaskOf(int64_t kadrs) {
    RecordingTask task;
    for (int16_t number = 0; number < ModulesMax * ModuleChannels; number++) {
        task.Channels.push_back({number, fmt::format("ch{}", number), "-10 to 10", "V",
                                 number % 2 == 0 ? 1638.4 : 131.072, number % 3 == 0 ? 125.0 : 0});
    }
    task.Modules = {{0, 3}, {1, 5}};
    task.Rate = Rate;
    task.WantedKadrs = kadrs;
    return task;
}

// Calls with all kadrs, block after block. No two blocks of a thousand begin with the same ones.
void ForEachBlock(int64_t kadrs, size_t channels, const std::function<void(std::span<const int16_t>)>& take) {
    std::vector<int16_t> noise((1000 + BlockKadrs) * channels);
    uint32_t state = 1;
    for (int16_t& sample : noise) {
        state = state * 1664525 + 1013904223;
        sample = static_cast<int16_t>(static_cast<int32_t>(state >> 17) - 16384);
    }
    for (int64_t kadr = 0; kadr < kadrs; kadr += BlockKadrs) {
        const auto count = static_cast<size_t>(std::min(BlockKadrs, kadrs - kadr));
        take(std::span(noise).subspan(static_cast<size_t>(kadr / BlockKadrs % 1000) * channels, count * channels));
    }
}

void WriteWithRecorder(FileFormat format, const std::string& path, const RecordingTask& task) {
    Options options;
    options.OutputPath = path;
    options.Format = format;
    options.Quiet = true;
    DeviceSummary summary;
    summary.Modules.resize(ModulesMax);
    summary.Libraries.push_back({"none", "", "", true});
    RecordedGaps gaps;
    const DataCheck check(task, summary);
    RecordingFiles files(options, task, summary, gaps, check);
    files.Begin();
    ForEachBlock(task.WantedKadrs, task.Channels.size(), [&](std::span<const int16_t> samples) {
        files.Add({samples, gaps.Add(static_cast<int64_t>(samples.size() / task.Channels.size()), {})});
        files.WriteWhenDue();
    });
    files.Finish({End::Complete, "", task.WantedKadrs, task.WantedKadrs, {}, {}, 0});
}

// A file in which everything waits for the disk as often as in the recorder's.
class PlainFile {
public:
    explicit PlainFile(const std::string& path) : File_(std::fopen(path.c_str(), "wb")) {
        if (!File_) throw std::runtime_error(path + " can't be opened");
        std::setvbuf(File_.get(), nullptr, _IOFBF, BufferBytes);
    }
    // Into a buffer, which is written when it is full.
    void Write(const void* data, size_t bytes) {
        if (std::fwrite(data, 1, bytes, File_.get()) != bytes) throw std::runtime_error("not written");
        if (Clock::now() - LastFlush_ < FlushInterval) return;
        Flush();
        LastFlush_ = Clock::now();
    }
    void Flush() {
        if (std::fflush(File_.get()) != 0 || fdatasync(fileno(File_.get())) != 0)
            throw std::runtime_error("not written");
    }

private:
    struct Closer {
        void operator()(std::FILE* file) const { std::fclose(file); }
    };
    std::unique_ptr<std::FILE, Closer> File_;
    Clock::time_point LastFlush_ = Clock::now();
};

void Copy(const std::string& path, const RecordingTask& task) {
    PlainFile file(path);
    ForEachBlock(task.WantedKadrs, task.Channels.size(),
                 [&](std::span<const int16_t> samples) { file.Write(samples.data(), samples.size_bytes()); });
    file.Flush();
}

void Format(const std::string& path, const RecordingTask& task) {
    PlainFile file(path);
    fmt::memory_buffer text;
    int64_t kadr = 0;
    ForEachBlock(task.WantedKadrs, task.Channels.size(), [&](std::span<const int16_t> samples) {
        text.clear();
        for (size_t i = 0; i < samples.size(); i += task.Channels.size()) {
            fmt::format_to(std::back_inserter(text), "{:.3f}", static_cast<double>(kadr++) / Rate);
            for (size_t column = 0; column < task.Channels.size(); column++) {
                fmt::format_to(std::back_inserter(text), ",{:.5f}",
                               task.Channels[column].Physical(samples[i + column]));
            }
            text.push_back('\n');
        }
        file.Write(text.data(), text.size());
    });
    file.Flush();
}

void Run(const std::string& writer, const std::string& path, int64_t kadrs) {
    const RecordingTask task = TaskOf(kadrs);
    if (writer == "npy") return WriteWithRecorder(FileFormat::Npy, path, task);
    if (writer == "csv") return WriteWithRecorder(FileFormat::Csv, path, task);
    if (writer == "influx") return WriteWithRecorder(FileFormat::Influx, path, task);
    if (writer == "copy") return Copy(path, task);
    if (writer == "fmt") return Format(path, task);
    throw std::runtime_error("there is no writer " + writer);
}

}  // namespace

}  // namespace corvane::bench

int main(int count, char* arguments[]) {
    try {
        if (count != 4) throw std::runtime_error("usage: writers npy|csv|influx|copy|fmt FILE KADRS");
        corvane::bench::Run(arguments[1], arguments[2], std::stoll(arguments[3]));
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "writers: %s\n", error.what());
    }
    return 1;
}
