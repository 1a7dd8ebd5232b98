#include "recorder/csv_writer.h"

#include <fmt/format.h>
#include <algorithm>
#include <cmath>

namespace corvane::recorder {

// The text then adds no error worth naming.
int DecimalsFor(double scale) {
    return std::clamp(static_cast<int>(std::ceil(std::log10(std::abs(scale)) - 1e-9)) + 1, 0, FixedPoint::DecimalsMax);
}

std::string CsvField(const std::string& text, char separator) {
    if (text.find_first_of(std::string("\"\r\n") + separator) == std::string::npos) return text;
    std::string quoted = "\"";
    for (const char character : text) {
        if (character == '"') quoted += '"';
        quoted += character;
    }
    return quoted + '"';
}

// The driver's rates are 1000 Hz divided by a whole number, so the period is a whole number of ms and the times are
// exact. Any other rate is kept to the us.
TimeColumn::TimeColumn(double rate, char point)
    : Period_(std::llround(1e6 / rate)), Decimals_(Period_ % 1000 == 0 ? 3 : 6), Point_(point) {}

char* TimeColumn::Write(char* text, int64_t kadr) const {
    const int64_t time = kadr * Period_;  // us
    // 32-bit processors have no division of 64 bits: the double may be one second off, which the rest shows.
    auto seconds = static_cast<int64_t>(static_cast<double>(time) * 1e-6);
    auto rest = static_cast<int32_t>(time - seconds * 1000000);
    if (rest < 0) seconds--, rest += 1000000;
    if (rest >= 1000000) seconds++, rest -= 1000000;
    text = WriteDigits(text, static_cast<uint32_t>(seconds));
    *text++ = Point_;
    return WriteDigits(text, static_cast<uint32_t>(Decimals_ == 3 ? rest / 1000 : rest), Decimals_);
}

std::string TimeColumn::Text(int64_t kadr) const {
    char text[LengthMax];
    return {text, Write(text, kadr)};
}

CsvWriter::CsvWriter(std::vector<Channel> channels, double rate, CsvStyle style, int64_t firstKadr)
    : Channels_(std::move(channels)),
      Style_(style),
      MissingBits_(MissingBits(Channels_)),
      Times_(rate, style.Point),
      Kadr_(firstKadr),
      Row_(TimeColumn::LengthMax + Channels_.size() * (FixedPoint::LengthMax + 1) + 1) {
    for (const Channel& channel : Channels_) Numbers_.emplace_back(DecimalsFor(channel.Scale), style.Point);
}

void CsvWriter::AppendHeader(std::string& text, std::span<const std::string> remarks) const {
    if (Style_.Mark) text += "\xEF\xBB\xBF";
    for (const std::string& remark : remarks) text += "# " + remark + '\n';
    text += "time (s)";
    for (const Channel& channel : Channels_) {
        text += Style_.Separator;
        text += CsvField(channel.Unit.empty() ? channel.Name : fmt::format("{} ({})", channel.Name, channel.Unit),
                         Style_.Separator);
    }
    text += '\n';
}

void CsvWriter::AppendRow(std::string& text, int64_t kadr, std::span<const double> samples) const {
    char* end = Times_.Write(Row_.data(), kadr);
    for (size_t channel = 0; channel < Channels_.size(); channel++) {
        *end++ = Style_.Separator;
        if (std::isnan(samples[channel])) continue;
        end = Numbers_[channel].Write(end, Channels_[channel].Physical(samples[channel]));
    }
    *end++ = '\n';
    text.append(Row_.data(), end);
}

int64_t CsvWriter::RowLengthMax() const {
    char text[FixedPoint::LengthMax];
    ptrdiff_t length = TimeColumn::LengthMax;
    for (size_t channel = 0; channel < Channels_.size(); channel++) {
        ptrdiff_t longest = 0;
        for (const int sample : {INT16_MIN, INT16_MAX}) {
            longest = std::max(longest, Numbers_[channel].Write(text, Channels_[channel].Physical(sample)) - text);
        }
        length += longest + 2;  // a separator and a sign
    }
    return length;
}

void CsvWriter::AppendRows(std::string& text, const TakenKadrs& kadrs) {
    const size_t count = Channels_.size();
    for (size_t kadr = 0; (kadr + 1) * count <= kadrs.Samples.size(); kadr++) {
        const uint8_t missing = kadrs.Missing.empty() ? uint8_t{0} : kadrs.Missing[kadr];
        const int16_t* samples = &kadrs.Samples[kadr * count];
        char* end = Times_.Write(Row_.data(), Kadr_++);
        for (size_t channel = 0; channel < count; channel++) {
            *end++ = Style_.Separator;
            if ((missing & MissingBits_[channel]) != 0) continue;
            end = Numbers_[channel].Write(end, Channels_[channel].Physical(samples[channel]));
        }
        *end++ = '\n';
        text.append(Row_.data(), end);
    }
}

}  // namespace corvane::recorder
