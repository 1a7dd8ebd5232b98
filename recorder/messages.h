// What the recorder says, in English and in Russian. The English text stands where it is said; one that messages.inc
// doesn't give in Russian is no constant, and doesn't compile. What is read by programs is English for everybody:
// files, and the keys and codes of JSON.
#pragma once

#include <fmt/format.h>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>

namespace corvane::recorder {

enum class Language { English, Russian };

// That of whatever is said; English until it is chosen.
Language UserLanguage();
void ChooseLanguage(Language language);

struct Message {
    std::string_view English;
    std::string_view Russian;
};

inline constexpr Message Messages[] = {
    {"", ""},
#define CORVANE_MESSAGE(english, russian) {english, russian},
#include "recorder/messages.inc"
#include "recorder/option_messages.inc"
#undef CORVANE_MESSAGE
};

// One of them.
class Text {
public:
    constexpr Text() = default;  // the empty one
    template <size_t Size>
    consteval Text(const char (&english)[Size]) {  // NOLINT(google-explicit-constructor): the text itself is the name
        while (Messages[Number_].English != std::string_view(english, Size - 1)) Number_++;
    }

    std::string_view In(Language language) const;
    bool Empty() const { return Number_ == 0; }

private:
    uint16_t Number_ = 0;
};

// One with places for values of these types.
template <class... Values>
class FormatOf {
public:
    template <size_t Size>
    consteval FormatOf(const char (&english)[Size]) : Text_(english) {  // NOLINT(google-explicit-constructor)
#ifndef __clang__  // takes no constant of this one for a constant in there; the other compiler sees every text anyway
        [[maybe_unused]] const fmt::format_string<Values...> checked(english);
#endif
    }

    Text Unfilled() const {
        return Text_;
    }

private:
    Text Text_;
};
template <class... Values>
using Format = FormatOf<std::type_identity_t<Values>...>;

std::string Say(Text text);
std::string SayValues(Language language, Text text, fmt::format_args values);

template <class... Values>
std::string SayIn(Language language, Format<Values...> format, Values&&... values) {
    return SayValues(language, format.Unfilled(), fmt::make_format_args(values...));
}

template <class First, class... Rest>
std::string Say(Format<First, Rest...> format, First&& first, Rest&&... rest) {
    return SayValues(UserLanguage(), format.Unfilled(), fmt::make_format_args(first, rest...));
}

// A text that came in English, from a file or a library, in the user's language: as it is where it is none of those
// that are known.
std::string Translated(std::string_view english);

}  // namespace corvane::recorder
