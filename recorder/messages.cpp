#include "recorder/messages.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <optional>
#include <vector>

namespace corvane::recorder {
namespace {

Language Chosen = Language::English;

// A place for a value in a text: "{}", "{:.6g}" or "{1:.6g}".
struct Place {
    size_t Start = 0;  // in the text
    size_t End = 0;
    size_t Value = 0;  // its number
    std::string_view Look;
};

// The next place of a text behind the one before; none: its start is the text's end.
constexpr Place NextPlace(std::string_view text, const Place* before) {
    const size_t start = text.find('{', before == nullptr ? 0 : before->End);
    if (start == std::string_view::npos) return {text.size(), text.size(), 0, ""};
    const size_t end = text.find('}', start) + 1;
    const std::string_view inside = text.substr(start + 1, end - start - 2);
    const bool numbered = !inside.empty() && inside.front() != ':';
    const size_t next = before == nullptr ? 0 : before->Value + 1;
    return {start, end, numbered ? static_cast<size_t>(inside.front() - '0') : next, inside.substr(numbered ? 1 : 0)};
}

// How often a text shows this value, in this look.
constexpr size_t Shown(std::string_view text, const Place& wanted) {
    size_t count = 0;
    for (Place place = NextPlace(text, nullptr); place.Start < text.size(); place = NextPlace(text, &place)) {
        if (place.Value == wanted.Value && place.Look == wanted.Look) count++;
    }
    return count;
}

constexpr bool ShowsValuesOf(std::string_view one, std::string_view other) {
    for (Place place = NextPlace(one, nullptr); place.Start < one.size(); place = NextPlace(one, &place)) {
        if (Shown(other, place) != Shown(one, place)) return false;
    }
    return true;
}

// Words in both languages, with the same values in both.
constexpr bool Sound(const Message& message) {
    const auto& [english, russian] = message;
    return english.empty() == russian.empty() && ShowsValuesOf(english, russian) && ShowsValuesOf(russian, english);
}
static_assert(std::ranges::all_of(Messages, Sound));

// What others say, or files of this recorder.
constexpr Text Known[] = {
    "a receive was cut short",
    "nothing came",
    "the library could not process what came",
    "various gaps, too many to be listed one by one",
    "no data came for {:.6g} s",
    "nothing was measured for {:.6g} s",
    "the driver ended the recording. {}",
    // NOLINTNEXTLINE(bugprone-suspicious-missing-comma): one long text
    "doubtful: the kadrs were up to {:.1f} s behind this computer's clock, so times may be wrong by as much, or kadrs "
    "be missing",
    "doubtful: the kadrs were up to {:.1f} s ahead of this computer's clock, so times may be wrong by as much",
    "doubtful: the driver's ring was full, this computer was too slow and kadrs may be missing",
    "There is no crate with the serial number \"{}\". None was found.",
    "server {}: crates {}, of which usable none",
    "server {}: crates {}, of which usable {}",
    "slot {} can't be opened. {}",
    "slot {} can't be read. {}",
    "{} is required",
    "{} excludes {}",
    "The following argument was not expected: {}",
    "The following arguments were not expected: {}",
    "{}: At Most {} required but received {}",
    "{}: 1 required TEXT missing",
    "Requires at most 1 options be given from [{}]",
    "The value {} is not an allowed value for {}",
};

// The values with which a text was filled; none where it was another one.
std::optional<std::vector<std::string_view>> ValuesIn(std::string_view filled, std::string_view text) {
    std::vector<std::string_view> values;
    Place place = NextPlace(text, nullptr);
    if (!filled.starts_with(text.substr(0, place.Start))) return std::nullopt;
    filled.remove_prefix(place.Start);
    while (place.Start < text.size()) {
        const Place next = NextPlace(text, &place);
        const std::string_view between = text.substr(place.End, next.Start - place.End);
        const bool last = next.Start == text.size();
        const size_t end = last && filled.ends_with(between) ? filled.size() - between.size()
                           : last                            ? std::string_view::npos
                                                             : filled.find(between);
        if (end == std::string_view::npos) return std::nullopt;
        values.push_back(filled.substr(0, end));
        filled.remove_prefix(end + between.size());
        place = next;
    }
    return filled.empty() ? std::optional(values) : std::nullopt;
}

}  // namespace

Language UserLanguage() {
    return Chosen;
}

void ChooseLanguage(Language language) {
    Chosen = language;
}

std::string_view Text::In(Language language) const {
    return language == Language::Russian ? Messages[Number_].Russian : Messages[Number_].English;
}

std::string Say(Text text) {
    return std::string(text.In(Chosen));
}

std::string SayValues(Language language, Text text, fmt::format_args values) {
    return fmt::vformat(text.In(language), values);
}

std::string Translated(std::string_view english) {
    for (const Text known : Known) {
        const auto values = ValuesIn(english, known.In(Language::English));
        if (!values) continue;
        const std::string_view text = known.In(Chosen);
        std::string filled;
        Place before;
        for (Place place = NextPlace(text, nullptr);; place = NextPlace(text, &place)) {
            filled += text.substr(before.End, place.Start - before.End);
            if (place.Start == text.size()) return filled;
            filled += values->at(place.Value);
            before = place;
        }
    }
    return std::string(english);
}

}  // namespace corvane::recorder
