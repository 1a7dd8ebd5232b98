#include "recorder/page/csv_head.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <utility>

#include "recorder/options.h"
#include "recorder/taken_kadrs.h"

namespace corvane::recorder {
namespace {

// The rest of a text that begins so.
std::optional<std::string_view> After(std::string_view text, std::string_view start) {
    if (!text.starts_with(start)) return std::nullopt;
    return text.substr(start.size());
}

template <class Number>
bool TakeNumber(std::string_view& text, Number& number) {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc()) return false;
    text.remove_prefix(static_cast<size_t>(end - text.data()));
    return true;
}

bool Take(std::string_view& text, std::string_view start) {
    if (!text.starts_with(start)) return false;
    text.remove_prefix(start.size());
    return true;
}

// "name (unit)", where the unit is in the last brackets.
Channel ChannelOf(std::string name) {
    Channel channel;
    const size_t bracket = name.rfind(" (");
    if (bracket != std::string::npos && name.ends_with(')')) {
        channel.Unit = name.substr(bracket + 2, name.size() - bracket - 3);
        name.resize(bracket);
    }
    std::ranges::replace_if(
        name, [](char character) { return static_cast<uint8_t>(character) < ' '; }, ' ');
    channel.Name = std::move(name);
    return channel;
}

std::optional<Gap> GapOf(std::string_view text, double rate, int& slot) {
    constexpr double KadrsMax = 1e15;
    Gap gap;
    double from = 0;
    double to = 0;
    double seconds = 0;
    const bool whole = Take(text, "not measured: module ") && TakeNumber(text, gap.Module) && Take(text, ", slot ") &&
                       TakeNumber(text, slot) && Take(text, ", from ") && TakeNumber(text, from) &&
                       Take(text, " to ") && TakeNumber(text, to) && Take(text, ", ") && TakeNumber(text, seconds) &&
                       Take(text, " s, ");
    if (!whole || gap.Module < 0 || gap.Module >= ModulesMax) return std::nullopt;
    if (!(from >= 0 && to >= from && to * rate < KadrsMax)) return std::nullopt;
    gap.First = std::llround(from * rate);
    gap.Kadrs = std::llround(to * rate) - gap.First + 1;
    for (const GapReason reason : {GapReason::CutShort, GapReason::NothingCame, GapReason::NotProcessed}) {
        if (text == ReasonText(reason)) gap.Reason = reason;
    }
    return gap;
}

}  // namespace

void UnderstandHeadLine(std::string_view line, PageSubject& subject) {
    subject.Lines.emplace_back(line);
    if (auto device = After(line, "Device: ")) subject.Simulated = device->ends_with(" (SIMULATED)");
    if (auto start = After(line, "Start: ")) subject.Start = *start;
    if (auto rate = After(line, "Rate: ")) {
        double number = 0;
        // The rows' times say it more exactly: they count whole microseconds.
        if (TakeNumber(*rate, number) && number > 1e-3 && number <= 1e6)
            subject.Rate = 1e6 / static_cast<double>(std::llround(1e6 / number));
    }
    if (auto wanted = After(line, "Kadrs wanted: ")) {
        subject.Ending.WantedKadrs = UntilInterrupted;
        TakeNumber(*wanted, subject.Ending.WantedKadrs);
    }
    if (auto rows = After(line, "Rows: each ")) {
        const size_t digits = rows->find_first_of("123456789");
        if (digits != std::string_view::npos) rows->remove_prefix(digits);
        TakeNumber(*rows, subject.Step);
        subject.Step = std::clamp<int64_t>(subject.Step, 1, 1'000'000'000);
    }
}

std::optional<size_t> UnderstandNames(std::string_view text, PageSubject& subject, char& separator, char& point) {
    constexpr std::string_view Time = "time (s)";
    if (!text.starts_with(Time) || text.size() <= Time.size()) return std::nullopt;
    separator = text[Time.size()];
    if (separator != ',' && separator != ';') return std::nullopt;
    point = separator == ',' ? '.' : ',';
    std::string name;
    bool quoted = false;
    for (size_t i = Time.size() + 1; i < text.size(); i++) {
        const char character = text[i];
        const bool twice = quoted && character == '"' && i + 1 < text.size() && text[i + 1] == '"';
        if (twice) name += text[i++];
        if (twice) continue;
        if (character == '"') {
            quoted = !quoted;
        } else if (quoted || (character != separator && character != '\n')) {
            name += character;
        } else {
            if (character == '\n' && name.ends_with('\r')) name.pop_back();
            subject.Channels.push_back(ChannelOf(std::exchange(name, "")));
            if (character == '\n') return i + 1;
        }
    }
    return std::nullopt;
}

void UnderstandTailLine(std::string_view line, PageSubject& subject) {
    Verdict& ending = subject.Ending;
    int slot = 0;
    if (const auto gap = GapOf(line, subject.Rate, slot)) {
        ending.Gaps.push_back(*gap);
        subject.Owners.resize(std::max(subject.Owners.size(), static_cast<size_t>(gap->Module) + 1));
        subject.Owners[static_cast<size_t>(gap->Module)].Slot = slot;
        subject.Owners[static_cast<size_t>(gap->Module)].Module = gap->Module;
    } else if (line.starts_with("interrupted: ")) {
        ending.HowItEnded = End::Interrupted;
    } else if (const auto next = After(line, "continued in ")) {
        ending.HowItEnded = End::Continued;
        ending.Reason = *next;
    } else if (line.starts_with("incomplete: ")) {
        // "incomplete: so many kadrs, reason"
        const size_t comma = line.find(", ");
        ending.Reason = comma == std::string_view::npos ? "" : line.substr(comma + 2);
        const bool unknown = ending.Reason.starts_with("the recording was still running");
        ending.HowItEnded = unknown ? End::Unknown : End::Stopped;
        if (unknown) ending.Reason.clear();
    } else if (!line.starts_with("note: ") && !line.starts_with("not measured: ")) {
        ending.Doubts.emplace_back(line);
    }
}

}  // namespace corvane::recorder
