#include "recorder/csv_writer.h"

#include <fmt/format.h>
#include <algorithm>
#include <charconv>
#include <cmath>

namespace corvane::recorder {
namespace {

constexpr int DecimalsMax = 12;

// Fewest decimals whose last place is no larger than a tenth of a code: the text then adds no error worth naming.
int DecimalsFor(double scale) {
    return std::clamp(static_cast<int>(std::ceil(std::log10(std::abs(scale)) - 1e-9)) + 1, 0, DecimalsMax);
}

void AppendFixed(std::string& text, double value, int decimals) {
    if (std::abs(value) < 0.5 * std::pow(10.0, -decimals)) value = 0;  // never "-0.000"
    char digits[340];                                                  // a double has at most 309 before the point
    const auto [end, error] = std::to_chars(digits, digits + sizeof(digits), value, std::chars_format::fixed, decimals);
    if (error == std::errc()) text.append(digits, end);
}

}  // namespace

std::string CsvField(const std::string& text) {
    if (text.find_first_of(",\"\r\n") == std::string::npos) return text;
    std::string quoted = "\"";
    for (const char character : text) {
        if (character == '"') quoted += '"';
        quoted += character;
    }
    return quoted + '"';
}

// The driver's rates are 1000 Hz divided by a whole number, so the period is a whole number of ms and the times are
// exact. Any other rate is kept to the us.
TimeColumn::TimeColumn(double rate) : Period_(std::llround(1e6 / rate)), Decimals_(Period_ % 1000 == 0 ? 3 : 6) {}

void TimeColumn::Append(std::string& text, int64_t kadr) const {
    const int64_t time = kadr * Period_;  // us
    fmt::format_to(std::back_inserter(text), "{}.{:0{}}", time / 1000000, time % 1000000 / (Decimals_ == 3 ? 1000 : 1),
                   Decimals_);
}

CsvWriter::CsvWriter(std::vector<Channel> channels, double rate)
    : Channels_(std::move(channels)), MissingBits_(MissingBits(Channels_)), Rate_(rate), Times_(rate) {
    for (const Channel& channel : Channels_) Decimals_.push_back(DecimalsFor(channel.Scale));
}

void CsvWriter::AppendHeader(std::string& text, std::span<const std::string> remarks) const {
    for (const std::string& remark : remarks) text += "# " + remark + '\n';
    text += "time (s)";
    for (const Channel& channel : Channels_) {
        text += ',';
        text += CsvField(channel.Unit.empty() ? channel.Name : fmt::format("{} ({})", channel.Name, channel.Unit));
    }
    text += '\n';
}

void CsvWriter::AppendRows(std::string& text, const TakenKadrs& kadrs) {
    const size_t count = Channels_.size();
    for (size_t kadr = 0; (kadr + 1) * count <= kadrs.Samples.size(); kadr++) {
        const uint8_t missing = kadrs.Missing.empty() ? uint8_t{0} : kadrs.Missing[kadr];
        Times_.Append(text, Row_++);
        for (size_t channel = 0; channel < count; channel++) {
            text += ',';
            if ((missing & MissingBits_[channel]) != 0) continue;
            AppendValue(text, channel, kadrs.Samples[kadr * count + channel]);
        }
        text += '\n';
    }
}

void CsvWriter::AppendValue(std::string& text, size_t channel, int16_t sample) const {
    AppendFixed(text, Channels_[channel].Physical(sample), Decimals_[channel]);
}

}  // namespace corvane::recorder
