#include "selection/name_pattern.h"

namespace corvane {

namespace {

bool InList(char character, std::string_view list) {
    for (size_t i = 0; i < list.size(); i++) {
        if (i + 2 < list.size() && list[i + 1] == '-') {
            if (list[i] <= character && character <= list[i + 2]) return true;
            i += 2;
        } else if (list[i] == character) {
            return true;
        }
    }
    return false;
}

// Length of the pattern's first element when it matches the character, otherwise 0.
size_t MatchOne(char character, std::string_view pattern) {
    if (pattern.empty()) return 0;
    if (pattern[0] == '?') return 1;
    if (pattern[0] == '#') return character >= '0' && character <= '9' ? 1 : 0;
    if (pattern[0] != '[') return pattern[0] == character ? 1 : 0;
    const size_t close = pattern.find(']');
    if (close == std::string_view::npos) return 0;
    std::string_view list = pattern.substr(1, close - 1);
    const bool inverted = list.starts_with('!');
    if (inverted) list.remove_prefix(1);
    return InList(character, list) != inverted ? close + 1 : 0;
}

}  // namespace

// After a mismatch only the last * is tried again, with one character more, so the time is bounded by the product of
// the lengths.
bool MatchesPattern(std::string_view name, std::string_view pattern) {
    std::string_view afterStar;
    size_t retry = 0;
    bool star = false;
    std::string_view rest = pattern;
    size_t at = 0;
    while (at < name.size()) {
        if (rest.starts_with('*')) {
            rest.remove_prefix(1);
            afterStar = rest;
            retry = at;
            star = true;
        } else if (const size_t matched = MatchOne(name[at], rest); matched > 0) {
            rest.remove_prefix(matched);
            at++;
        } else if (star) {
            rest = afterStar;
            at = ++retry;
        } else {
            return false;
        }
    }
    return rest.find_first_not_of('*') == std::string_view::npos;
}

}  // namespace corvane
