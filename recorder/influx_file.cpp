#include "recorder/influx_file.h"

#include <fmt/format.h>
#include <algorithm>
#include <chrono>
#include <iterator>

#include "recorder/csv_writer.h"
#include "recorder/report.h"

namespace corvane::recorder {
namespace {

constexpr size_t TimeLength = 24;  // bytes; a time, with what stands around it

// A tag without a value is not allowed.
std::string Tag(const char* name, std::string_view value) {
    return value.empty() ? "" : fmt::format(",{}={}", name, EscapeTag(value));
}

std::string SlotTag(int slot) {
    return slot == 0 ? "" : Tag("slot", std::to_string(slot));
}

}  // namespace

std::string EscapeTag(std::string_view text) {
    std::string escaped;
    for (const char character : text) {
        const bool unfit = static_cast<unsigned char>(character) < 0x20 || character == '\\' || character == 0x7F;
        if (character == ',' || character == '=' || character == ' ') escaped += '\\';
        escaped += unfit ? '_' : character;
    }
    return escaped;
}

void InfluxFile::Begin(const Recording& recording) {
    Recording_ = &recording;
    Kadr_ = recording.FirstKadr;
    // The database sorts tags by their names, and is quicker where they come so.
    DeviceTags_ =
        Tag("crate", recording.Device.CrateSerial) + Tag("device", recording.Device.Device(Language::English));
    const RecordingTask& task = recording.Task;
    const std::vector<uint8_t> missingBits = MissingBits(task.Channels);
    for (size_t i = 0; i < task.Channels.size(); i++) {
        const Channel& channel = task.Channels[i];
        Series_.push_back(
            {fmt::format("ltr27,channel={}{}{}{} value=", channel.Number, DeviceTags_,
                         SlotTag(task.SlotOf(channel.Number / ModuleChannels)), Tag("unit", channel.Unit)),
             FixedPoint(FixedPoint::DecimalsFor(channel.Scale), '.'), missingBits[i]});
    }
    for (const std::string& line : recording.Lines()) AppendRemark(line);
    File.Write();
}

// For people: the database leaves such lines out. What a device calls itself must not begin a line of its own.
void InfluxFile::AppendRemark(std::string remark) {
    std::ranges::replace_if(
        remark, [](char character) { return character == '\n' || character == '\r'; }, ' ');
    File.Buffer() += "# " + remark + '\n';
}

int64_t InfluxFile::TimeOf(int64_t kadr) const {
    using std::chrono::nanoseconds;
    const nanoseconds period = std::chrono::microseconds(TimeColumn::Period(Recording_->Task.Rate));
    return nanoseconds(Recording_->StartTime.time_since_epoch()).count() + kadr * period.count();
}

void InfluxFile::Add(const TakenKadrs& kadrs) {
    const size_t count = Series_.size();
    for (size_t kadr = 0; (kadr + 1) * count <= kadrs.Samples.size(); kadr++) {
        AppendKadr(&kadrs.Samples[kadr * count], kadrs.Missing.empty() ? uint8_t{0} : kadrs.Missing[kadr]);
        File.WriteWhenLarge();
    }
    File.Write();
}

void InfluxFile::AppendKadr(const int16_t* samples, uint8_t missing) {
    char time[TimeLength];
    const std::string_view end(time, fmt::format_to(time, " {}\n", TimeOf(Kadr_++)));
    char number[FixedPoint::LengthMax];
    std::string& text = File.Buffer();
    for (size_t i = 0; i < Series_.size(); i++) {
        const Series& series = Series_[i];
        if ((missing & series.MissingBit) != 0) continue;
        text += series.Start;
        text.append(number, series.Number.Write(number, Recording_->Task.Channels[i].Physical(samples[i])));
        text += end;
    }
}

// One that has grown is written again: the point in the database grows with it.
void InfluxFile::AppendGaps(const std::vector<Gap>& gaps) {
    const RecordingTask& task = Recording_->Task;
    WrittenKadrs_.resize(gaps.size());
    for (size_t i = 0; i < gaps.size(); i++) {
        const Gap& gap = gaps[i];
        if (WrittenKadrs_[i] == gap.Kadrs) continue;
        WrittenKadrs_[i] = gap.Kadrs;
        const int64_t from = TimeOf(gap.First);
        const double seconds = static_cast<double>(gap.Kadrs * TimeColumn::Period(task.Rate)) / 1e6;
        fmt::format_to(std::back_inserter(File.Buffer()),
                       "ltr27_gaps{},module={}{} from={}i,to={}i,seconds={},kadrs={}i,reason=\"{}\" {}\n", DeviceTags_,
                       gap.Module, SlotTag(task.SlotOf(gap.Module)), from, TimeOf(gap.First + gap.Kadrs - 1), seconds,
                       gap.Kadrs, ReasonText(gap.Reason), from);
    }
}

int64_t InfluxFile::Room(int64_t bytesMax) const {
    size_t length = 0;  // of a kadr
    for (size_t i = 0; i < Series_.size(); i++) {
        const Channel& channel = Recording_->Task.Channels[i];
        length += Series_[i].Start.size() + TimeLength +
                  Series_[i].Number.LengthBetween(channel.Physical(INT16_MIN), channel.Physical(INT16_MAX));
    }
    return (bytesMax - File.Bytes()) / static_cast<int64_t>(length);
}

void InfluxFile::Flush(const Verdict& soFar) {
    AppendGaps(soFar.Gaps);
    File.WriteToDisk();
}

void InfluxFile::Finish(const Verdict& verdict) {
    AppendGaps(verdict.Gaps);
    Verdict rest = verdict;
    rest.Gaps.clear();  // which are points
    for (const std::string& remark : Remarks(Recording_->Task, rest)) AppendRemark(remark);
    File.Complete();
}

}  // namespace corvane::recorder
