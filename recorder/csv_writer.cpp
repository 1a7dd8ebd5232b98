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
CsvWriter::CsvWriter(std::vector<Channel> channels, double rate)
    : Channels_(std::move(channels)),
      Rate_(rate),
      Period_(std::llround(1e6 / rate)),
      TimeDecimals_(Period_ % 1000 == 0 ? 3 : 6) {
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

void CsvWriter::AppendRows(std::string& text, std::span<const int16_t> samples) {
    const size_t count = Channels_.size();
    for (size_t start = 0; start + count <= samples.size(); start += count) {
        const int64_t time = Row_ * Period_;  // us
        fmt::format_to(std::back_inserter(text), "{}.{:0{}}", time / 1000000,
                       time % 1000000 / (TimeDecimals_ == 3 ? 1000 : 1), TimeDecimals_);
        for (size_t channel = 0; channel < count; channel++) {
            text += ',';
            AppendValue(text, channel, samples[start + channel]);
        }
        text += '\n';
        Row_++;
    }
}

void CsvWriter::AppendValue(std::string& text, size_t channel, int16_t sample) const {
    AppendFixed(text, Channels_[channel].Physical(sample), Decimals_[channel]);
}

}  // namespace corvane::recorder
