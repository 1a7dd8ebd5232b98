// The IP address control as its window drives it.
#include "selection/ucIP.h"

#include <gtest/gtest.h>

#include <random>

namespace corvane {
namespace {

class IpControl : public testing::Test {
protected:
    void Hold(int box, const std::string& text, size_t start, size_t length = 0) {
        Control.txtIP[static_cast<size_t>(box)] = {text, start, length, text};
        Focus = box;
    }

    OctetBox& Focused() { return Control.txtIP[static_cast<size_t>(Focus)]; }

    // What an edit box does with a character that is not dropped.
    void Type(const std::string& characters) {
        for (const char character : characters) {
            if (Control.Accepts(Focus, static_cast<char32_t>(character))) Paste(std::string(1, character));
        }
    }

    void Paste(const std::string& text) {
        OctetBox& box = Focused();
        box.Text.replace(box.SelStart, box.SelLength, text);
        box.SelStart += text.size();
        box.SelLength = 0;
        Focus = Control.TextChanged(Focus);
    }

    ucIP Control;
    int Focus = ucIP::Leftmost;
};

TEST_F(IpControl, DropsCharactersThatMakeNoOctet) {
    const struct {
        const char* Text;
        size_t Start, Length;
        const char* Typed;
        const char* Result;
    } cases[] = {{"25", 2, 0, "3", "253"},      {"25", 2, 0, "6", "25"},   {"25", 0, 2, "6", "6"},
                 {"25", 0, 0, "1", "125"},      {"0", 1, 0, "0", "0"},     {"0", 0, 0, "5", "50"},
                 {"0", 0, 0, "0", "0"},         {"", 0, 0, "07", "7"},     {"10", 1, 0, "0", "100"},
                 {"", 0, 0, "0", "0"},          {"123", 3, 0, "4", "123"}, {"123", 1, 1, "9", "193"},
                 {"12", 1, 0, ".-+ eA/:", "12"}};
    for (const auto& each : cases) {
        Hold(0, each.Text, each.Start, each.Length);
        Type(each.Typed);
        EXPECT_EQ(Focused().Text, each.Result) << each.Text << " " << each.Typed;
    }
    for (const size_t caret : {0u, 1u}) {
        Hold(0, "0", caret);
        EXPECT_FALSE(Control.Accepts(0, U'0')) << "two zeros";
    }
    for (const char32_t other : {U'٣', U'３', U'½', char32_t{0x10FFFF}, char32_t{0xD83D}, char32_t{0x131}}) {
        EXPECT_FALSE(Control.Accepts(0, other)) << static_cast<uint32_t>(other);
    }
    for (const char32_t control : {U'\b', U'\x16', U'\0', U'\x1F'}) EXPECT_TRUE(Control.Accepts(0, control));
}

TEST_F(IpControl, BringsChangedTextsInOrder) {
    const std::string megabytes(8 << 20, '9');
    const struct {
        std::string Changed, Result;
    } cases[] = {{"", ""},
                 {"05", "5"},
                 {"00", "0"},
                 {"012", "12"},
                 {"255", "255"},
                 {"256", "77"},
                 {"300", "77"},
                 {"abc", "77"},
                 {"1.5", "77"},
                 {"-1", "77"},
                 {"+1", "77"},
                 {" 1", "77"},
                 {"1e1", "77"},
                 {"&H1", "77"},
                 {"１", "77"},
                 {"٣", "77"},
                 {{'1', '\0'}, "77"},
                 {"\xFF\xFE", "77"},
                 {"00000", "0"},
                 {"00009", "9"},
                 {megabytes, "77"},
                 {std::string(8 << 20, '0') + "7", "7"}};
    for (const auto& each : cases) {
        Hold(1, "77", 0, 2);
        Paste(each.Changed);
        const OctetBox& box = Control.txtIP[1];
        EXPECT_EQ(box.Text, each.Result) << each.Changed.substr(0, 20);
        EXPECT_EQ(box.Accepted, each.Result);
        EXPECT_LE(box.SelStart, box.Text.size());
    }
    ucIP fresh;  // nothing was accepted yet
    fresh.txtIP[2].Text = "x";
    fresh.TextChanged(2);
    EXPECT_EQ(fresh.txtIP[2].Text, "");
}

TEST_F(IpControl, MovesOnBehindTheThirdDigitOnly) {
    Hold(3, "", 0);
    Hold(2, "45", 2);
    Focus = 3;
    Type("192");
    EXPECT_EQ(Focus, 2);
    EXPECT_EQ(Focused().SelStart, 0u);
    Type("1");  // 145, with the caret before its end
    EXPECT_EQ(Focus, 2);
    Hold(0, "25", 2);
    Type("5");
    EXPECT_EQ(Focus, 0);
    Hold(2, "192", 0, 3);
    Paste("abc");  // the text that comes back has three digits, but nobody typed them
    EXPECT_EQ(Focus, 2);
    EXPECT_EQ(Focused().Text, "192");
}

TEST_F(IpControl, KeysMoveBetweenTheBoxes) {
    using enum CaretKey;
    const struct {
        int Box;
        size_t Start, Length;
        CaretKey Key;
        int Focus;
        size_t Caret;
    } cases[] = {
        {2, 0, 0, Left, 3, 2},  {2, 0, 2, Up, 3, 2},   {2, 1, 0, Left, 2, 1},  {3, 0, 0, Left, 3, 0},
        {2, 2, 0, Right, 1, 0}, {2, 1, 1, Down, 1, 0}, {2, 1, 0, Right, 2, 1}, {0, 2, 0, Right, 0, 2},
        {2, 0, 1, Right, 2, 0}, {1, 1, 0, Home, 3, 0}, {3, 1, 0, Home, 3, 1},  {1, 1, 0, End, 0, 2},
        {0, 1, 0, End, 0, 1},
    };
    for (const auto& each : cases) {
        for (int i = 0; i < 4; i++) Hold(i, "10", 1);
        Hold(each.Box, "10", each.Start, each.Length);
        EXPECT_EQ(Control.KeyDown(each.Box, each.Key), each.Focus) << each.Box << " " << static_cast<int>(each.Key);
        EXPECT_EQ(Control.txtIP[static_cast<size_t>(each.Focus)].SelStart, each.Caret);
        if (each.Focus != each.Box) {
            EXPECT_EQ(Control.txtIP[static_cast<size_t>(each.Focus)].SelLength, 0u);
        }
    }
    Hold(1, "200", 1);
    Control.DoubleClick(1);
    EXPECT_EQ(Control.txtIP[1].SelStart, 0u);
    EXPECT_EQ(Control.txtIP[1].SelLength, 3u);
}

TEST_F(IpControl, ValueIsTheAddress) {
    EXPECT_EQ(Control.Value(), 0u);
    for (const auto& box : Control.txtIP) EXPECT_EQ(box.Text, "0");
    for (const uint32_t address : {0xC0A80114u, 0xFFFFFFFFu, 0x7F000001u, 0x0A000001u, 0u}) {
        Control.SetValue(address);
        EXPECT_EQ(Control.Value(), address);
    }
    Control.SetValue(0xC0A80114);
    EXPECT_EQ(Control.txtIP[3].Text + Control.txtIP[2].Text + Control.txtIP[1].Text + Control.txtIP[0].Text,
              "192168120");
    Hold(0, "1", 1, 0);
    Paste("x");  // what was written is what comes back
    EXPECT_EQ(Control.txtIP[0].Text, "1");
    Hold(2, "", 0);
    EXPECT_EQ(Control.BoxToFill(), 2);
    Control.txtIP[1].Text = "300";  // not seen by the change rule
    Control.txtIP[3].Text = "zz";
    EXPECT_EQ(Control.Value(), 0u);
    EXPECT_EQ(Control.txtIP[1].Text, "");  // the first from the right alone
    EXPECT_EQ(Control.txtIP[1].Accepted, "");
    EXPECT_EQ(Control.txtIP[3].Text, "zz");
}

TEST_F(IpControl, NoSequenceOfActionsLeavesAnythingButOctets) {
    std::mt19937 random(7);
    const std::string pastes[] = {"", "0", "00", "255", "256", "1.2.3.4", "-5", "x", std::string(1000, '1'), "０"};
    for (int step = 0; step < 50000; step++) {
        switch (random() % 4) {
            case 0:
                Type(std::string(1, static_cast<char>(random() % 96 + 32)));
                break;
            case 1:
                Paste(pastes[random() % std::size(pastes)]);
                break;
            case 2:
                Focus = Control.KeyDown(Focus, static_cast<CaretKey>(random() % 6));
                break;
            default:
                Control.DoubleClick(Focus);
        }
        for (const OctetBox& box : Control.txtIP) {
            ASSERT_LE(box.SelStart + box.SelLength, box.Text.size());
            ASSERT_LE(box.Text.size(), 3u);
            if (!box.Text.empty()) {
                ASSERT_EQ(box.Text, std::to_string(std::stoi(box.Text) & 0xFF)) << step;
            }
        }
    }
}

}  // namespace
}  // namespace corvane
