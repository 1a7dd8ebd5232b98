// The address control as its window drives it.
#include "selection/ucIP.h"

#include <gtest/gtest.h>

#include <string>
#include <tuple>

namespace corvane {
namespace {

using namespace std::string_literals;

// In the tables "1|2" is a box with its caret in the middle, "1[23]" one whose last two digits are
// selected.
OctetBox Marked(std::string text) {
    const size_t start = text.find_first_of("|[");
    const size_t end = text.find(']');
    std::erase_if(text, [](char character) { return character < '0' || character > '9'; });
    return {text, start, end == std::string::npos ? 0 : end - start - 1, text};
}

std::string Shown(const OctetBox& box) {
    std::string text = box.Text;
    if (box.SelLength == 0) return text.insert(box.SelStart, "|");
    return text.insert(box.SelStart + box.SelLength, "]").insert(box.SelStart, "[");
}

class IpControl : public testing::Test {
protected:
    OctetBox& Box(int index) { return Control.txtIP[static_cast<size_t>(index)]; }

    void Hold(int box, const std::string& marked) {
        Box(box) = Marked(marked);
        Focus = box;
    }

    // What an edit box does with characters that are not dropped, and with a paste.
    void Type(const std::string& characters) {
        for (const char character : characters) {
            if (Control.Accepts(Focus, static_cast<char32_t>(character))) Paste(std::string(1, character));
        }
    }
    void Paste(const std::string& text) {
        OctetBox& box = Box(Focus);
        box.Text.replace(box.SelStart, box.SelLength, text);
        box.SelStart += text.size();
        box.SelLength = 0;
        Focus = Control.TextChanged(Focus);
    }

    std::string Texts() { return Box(3).Text + "." + Box(2).Text + "." + Box(1).Text + "." + Box(0).Text; }

    ucIP Control;
    int Focus = ucIP::Leftmost;
};

TEST_F(IpControl, DropsCharactersThatMakeNoOctet) {
    const std::tuple<const char*, const char*, const char*> cases[] = {
        {"25|", "3", "253|"},  {"2|5", "9", "2|5"},    {"[25]", "6", "6|"},
        {"0|", "0", "0|"},     {"|0", "5", "5|0"},     {"|", "07", "7|"},
        {"|123", "0", "|123"}, {"1[2]3", "9", "19|3"}, {"1|2", "eA/:.-+ \x7F", "1|2"}};
    for (const auto& [held, typed, shown] : cases) {
        Hold(0, held);
        Type(typed);
        EXPECT_EQ(Shown(Box(0)), shown) << held << " " << typed;
    }
    Hold(0, "|");
    for (const char32_t other : {U'٣', char32_t{0x10FFFF}, char32_t{0x131}}) EXPECT_FALSE(Control.Accepts(0, other));
    for (const char32_t control : {U'\b', U'\0', U'\x1F'}) EXPECT_TRUE(Control.Accepts(0, control));
}

// Behind a third digit the next box has the focus; a text that came back is none that was typed.
TEST_F(IpControl, BringsChangedTextsInOrder) {
    const std::string back = "77|", nines(8 << 20, '9');
    const std::tuple<int, const char*, std::string, int, std::string> cases[] = {
        {1, "[77]", "", 1, "|"},       {1, "[77]", "012", 1, "12|"},     {1, "[77]", "0000", 1, "0|"},
        {1, "[77]", "256", 1, back},   {1, "[77]", "-1", 1, back},       {1, "[77]", "1\0"s, 1, back},
        {1, "[77]", "1e1", 1, back},   {1, "[77]", "\xFF\xFE", 1, back}, {1, "[77]", nines, 1, back},
        {3, "19|", "2", 2, "|0"},      {2, "|45", "1", 2, "1|45"},       {0, "25|", "5", 0, "255|"},
        {2, "[192]", "abc", 2, "19|2"}};
    for (const auto& [box, held, pasted, focus, shown] : cases) {
        Control = {};
        Hold(box, held);
        Paste(pasted);
        EXPECT_EQ(Focus, focus) << held << " " << pasted.substr(0, 20);
        EXPECT_EQ(Shown(Box(Focus)), shown) << held << " " << pasted.substr(0, 20);
        EXPECT_EQ(Box(box).Accepted, Box(box).Text);
    }
}

TEST_F(IpControl, KeysMoveBetweenTheBoxes) {
    using enum CaretKey;
    const std::tuple<int, const char*, CaretKey, int, const char*> cases[] = {
        {2, "|10", Left, 3, "10|"},  {2, "[10]", Up, 3, "10|"},     {2, "1|0", Left, 2, "1|0"},
        {3, "|10", Left, 3, "|10"},  {2, "10|", Right, 1, "|10"},   {2, "1[0]", Down, 1, "|10"},
        {0, "10|", Right, 0, "10|"}, {2, "[1]0", Right, 2, "[1]0"}, {1, "1|0", Home, 3, "|10"},
        {3, "1|0", Home, 3, "1|0"},  {1, "1|0", End, 0, "10|"},     {0, "1|0", End, 0, "1|0"}};
    for (const auto& [box, held, key, focus, shown] : cases) {
        Control.txtIP.fill(Marked("1[0]"));
        Hold(box, held);
        EXPECT_EQ(Control.KeyDown(box, key), focus) << box << held << static_cast<int>(key);
        EXPECT_EQ(Shown(Box(focus)), shown) << box << held << static_cast<int>(key);
    }
    Control.DoubleClick(0);
    EXPECT_EQ(Shown(Box(0)), "[10]");
}

TEST_F(IpControl, ValueIsTheAddress) {
    EXPECT_EQ(Control.Value(), 0u);
    EXPECT_EQ(Texts(), "0.0.0.0");
    Control.SetValue(0xFFFFFFFF);
    EXPECT_EQ(Control.Value(), 0xFFFFFFFF);
    Control.SetValue(0x7F000001);
    Paste("x");
    EXPECT_EQ(Texts(), "127.0.0.1") << "what was written is what comes back";
    EXPECT_EQ(Control.BoxToFill(), 3);
    Box(2).Text = "";
    EXPECT_EQ(Control.BoxToFill(), 2);
    Box(1).Text = "300";  // not seen by the change rule
    Box(3).Text = "zz";
    EXPECT_EQ(Control.Value(), 0u);
    EXPECT_EQ(Texts(), "zz...1") << "the first from the right alone is emptied";
    EXPECT_EQ(Box(1).Accepted, "");
}

}  // namespace
}  // namespace corvane
