// Templates with inserts, the same by the platform's rules on every platform.
#include <gtest/gtest.h>

#include "common/mTypes3.h"

namespace corvane {
namespace {

TEST(FormatText, FollowsThePlatformsRules) {
    // Nothing to fill in, an argument's own percent sign, an empty result, escapes, line ends, widths and precisions.
    const std::pair<std::string, std::string> cases[] = {
        {"no insert\n", "no insert\n"},
        {"%5%2%1", "fiveдваLTR27"},
        {"%4", "f%1r"},
        {"%3", "3"},
        {"a%%b%%", "a%b%"},
        {"a%0%6", "a"},
        {"%1%nb%tc%rd", "LTR27\r\nb\tc\rd"},
        {"% %.%!%A%\"", " .!A\""},
        {"%1\na\r\nb\rc", "LTR27\r\na\r\nb\r\nc"},
        {"%\r\n|", "\r\r\n|"},
        {"%1!s!|%2!s!s!", "LTR27|дваs!"},
        {"%1!8s!|%1!-8s!|%1!.2s!|%1!5.3s!|", "   LTR27|LTR27   |LT|  LTR|"},
        {"%1 !s!", "LTR27 !s!"},
        {"%1!1.s!|%1!.0s!", " |"}};
    // Refused by the platform, or before it is asked: then the template without its percent signs.
    for (const char* refused :
         {"100%", "%6", "%10%", "%1!s", "%1!*s!", "%1!ls!%1!S!", "%1!99s!", "%1!999999999999s!"}) {
        std::string bare = refused;
        std::erase(bare, '%');
        EXPECT_EQ(bare, FormatText(refused, "LTR27", "два", "", "f%1r", "five"));
    }
    for (const auto& [pattern, expected] : cases) {
        EXPECT_EQ(expected, FormatText(pattern, "LTR27", "два", "", "f%1r", "five")) << pattern;
    }
    // Room is for the template and twice the arguments, the result's terminator included.
    EXPECT_EQ("aaaaaaaaaa", FormatText("%1%1%1%1%1%1%1%1%1%1", "a", "", "", "", ""));
    EXPECT_EQ(std::string(29, ' ') + "a", FormatText("%1!30s!", "a", "xxxxxxx", "", "", ""));
    EXPECT_EQ("1!31s!", FormatText("%1!31s!", "a", "xxxxxxx", "", "", ""));
    // Beyond what the platform's buffers hold.
    const std::string filler(33000, 'x');
    EXPECT_EQ("1" + filler, FormatText("%1" + filler, "a", "", "", "", ""));
    EXPECT_EQ("", ResourceText(12345, "a")) << "there is none";
}

}  // namespace
}  // namespace corvane
