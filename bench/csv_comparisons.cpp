// The text of a recording against the plain ways to write numbers.
#include <fmt/format.h>
#include <memory>

#include "bench/comparison.h"
#include "bench/modules.h"
#include "recorder/csv_writer.h"

namespace corvane::bench {

namespace {

constexpr size_t Kadrs = 64;

struct Rows {
    Rows() : Samples(Kadrs * ModuleChannels) {
        for (int16_t number = 0; number < ModuleChannels; number++) {
            Channels.push_back({number, "a", "", "V", number % 2 == 0 ? 1638.4 : 131.072, number % 3 == 0 ? 125.0 : 0});
        }
        for (size_t i = 0; i < Samples.size(); i++) Samples[i] = static_cast<int16_t>(i * 40503 % 32768 - 16384);
    }

    std::vector<recorder::Channel> Channels;
    std::vector<int16_t> Samples;
    std::string Text;
};

}  // namespace

std::vector<Comparison> CsvComparisons() {
    const auto rows = std::make_shared<Rows>();
    const auto writer = std::make_shared<recorder::CsvWriter>(rows->Channels, 1000);
    const auto write = [rows, writer] {
        rows->Text.clear();
        writer->AppendRows(rows->Text, {rows->Samples, {}});
        Keep(rows->Text.data());
    };
    const auto plain = [rows](const auto& append) {
        return [rows, append] {
            rows->Text.clear();
            for (size_t kadr = 0; kadr < Kadrs; kadr++) {
                append(rows->Text, static_cast<double>(kadr) / 1000);
                for (size_t i = 0; i < ModuleChannels; i++) {
                    append(rows->Text, rows->Channels[i].Physical(rows->Samples[kadr * ModuleChannels + i]));
                }
            }
            Keep(rows->Text.data());
        };
    };
    std::vector<Comparison> comparisons;
    comparisons.push_back(
        {"CSV, 16 channels", "fmt", Goal::FasterAtLeast, 4, write,
         plain([](std::string& text, double v) { fmt::format_to(std::back_inserter(text), "{:.5f},", v); })});
    comparisons.push_back(
        {"CSV, 16 channels", "snprintf", Goal::FasterAtLeast, 8, write, plain([](std::string& text, double v) {
             char number[32];
             text.append(number, static_cast<size_t>(std::snprintf(number, sizeof number, "%.5f,", v)));
         })});
    // The text alone, without what brings the samples and takes it.
    comparisons.push_back({"CSV, 16 channels, a value",
                           "",
                           Goal::NanosecondsAtMost,
                           sizeof(void*) == 8 ? 10 : 20,
                           write,
                           [] {},
                           {},
                           Kadrs * (ModuleChannels + 1)});
    return comparisons;
}

}  // namespace corvane::bench
