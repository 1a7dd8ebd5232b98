// Any name against any pattern, as the rules say it in their simplest, slowest form.
#include "fuzz/fuzz_input.h"
#include "selection/name_pattern.h"

namespace corvane {
namespace {

bool InList(char character, std::string_view list) {
    if (list.empty()) return false;
    if (list.size() > 2 && list[1] == '-') {
        return (list[0] <= character && character <= list[2]) || InList(character, list.substr(3));
    }
    return list[0] == character || InList(character, list.substr(1));
}

bool Matches(std::string_view name, std::string_view pattern) {
    if (pattern.empty()) return name.empty();
    if (pattern[0] == '*') {
        return Matches(name, pattern.substr(1)) || (!name.empty() && Matches(name.substr(1), pattern));
    }
    if (name.empty()) return false;
    const std::string_view rest = name.substr(1);
    if (pattern[0] == '?') return Matches(rest, pattern.substr(1));
    if (pattern[0] == '#') return name[0] >= '0' && name[0] <= '9' && Matches(rest, pattern.substr(1));
    if (pattern[0] != '[') return name[0] == pattern[0] && Matches(rest, pattern.substr(1));
    const size_t close = pattern.find(']');
    if (close == std::string_view::npos) return false;
    const bool inverted = pattern[1] == '!';
    const std::string_view list = pattern.substr(1, close - 1).substr(inverted ? 1 : 0);
    return InList(name[0], list) != inverted && Matches(rest, pattern.substr(close + 1));
}

}  // namespace
}  // namespace corvane

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace corvane;
    FuzzInput input(data, size);
    const std::string pattern = input.Text(), name = input.Rest();
    // The slow form takes exponential time for many stars.
    const bool slow = std::count(pattern.begin(), pattern.end(), '*') > 3 || name.size() > 40;
    const bool matches = MatchesPattern(name, pattern);
    Require(slow || matches == Matches(name, pattern), "the same answer as the rules");
    Require(MatchesPattern(name, "*") && MatchesPattern(name, std::string(name.size(), '?')), "any name");
    Require(MatchesPattern(name, "*" + name.substr(0, name.find_first_of("*?#[")) + "*"), "a part of the name");
    return 0;
}
