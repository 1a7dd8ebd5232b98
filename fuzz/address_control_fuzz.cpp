// The four boxes of the address control with any keys, characters and texts, as its window reports them.
#include "base/dotted_address.h"
#include "fuzz/fuzz_input.h"
#include "selection/ucIP.h"

namespace corvane {
namespace {

constexpr size_t Shown = 1;  // digits of a box's shortest text that the control writes itself

void RequireBoxes(const ucIP& control) {
    for (const OctetBox& box : control.txtIP) {
        const auto octet = ParseOctet(box.Text);
        Require(box.Text.empty() || (octet && box.Text == std::to_string(*octet)), "empty or an octet");
        Require(box.SelStart <= box.Text.size() && box.SelLength <= box.Text.size() - box.SelStart, "a caret inside");
    }
}

// What the window's box does with a character that the control accepts.
void Type(ucIP& control, int box, char32_t character) {
    OctetBox& into = control.txtIP[static_cast<size_t>(box)];
    const size_t room = into.Text.size() - into.SelLength;
    if (!control.Accepts(box, character) || character < ' ') return;
    Require(character >= '0' && character <= '9' && room < OctetDigits, "a digit that has room");
    into.Text.replace(into.SelStart, into.SelLength, 1, static_cast<char>(character));
    const std::string typed = into.Text;
    into.SelStart++;
    into.SelLength = 0;
    const int next = control.TextChanged(box);
    Require(ParseOctet(into.Text) == ParseOctet(typed), "what was typed");
    const bool full = into.Text.size() == OctetDigits && into.SelStart == OctetDigits;
    Require(next == (full && box > 0 ? box - 1 : box), "on to the next box after the third digit only");
}

// A pasted text with the caret anywhere in it.
void Paste(ucIP& control, int box, FuzzInput& input) {
    OctetBox& into = control.txtIP[static_cast<size_t>(box)];
    const std::string before = into.Accepted;
    const std::string text = input.Text();
    into.Text = text;
    into.SelStart = std::min<size_t>(input.Byte(), text.size());
    into.SelLength = std::min<size_t>(input.Byte(), text.size() - into.SelStart);
    const int next = control.TextChanged(box);
    Require(next == box || next == box - 1, "this box or the next");
    const auto octet = ParseOctet(text);
    const std::string& wanted = text.empty() ? text : before;
    Require(into.Text == (octet ? std::to_string(*octet) : wanted), "the octet, or what was there");
}

void RequireValue(ucIP control) {
    uint32_t expected = 0;
    bool whole = true;
    for (const OctetBox& box : control.txtIP) whole = whole && box.Text.size() >= Shown;
    for (int i = ucIP::Leftmost; whole && i >= 0; i--) {
        expected = expected << 8 | *ParseOctet(control.txtIP[static_cast<size_t>(i)].Text);
    }
    Require(control.Value() == expected, "the boxes' address");
}

}  // namespace
}  // namespace corvane

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace corvane;
    FuzzInput input(data, size);
    ucIP control;
    control.SetValue(input.Any<uint32_t>());
    int box = ucIP::Leftmost;
    while (!input.Empty()) {
        const uint8_t action = input.Byte();
        switch (action % 8) {
            case 0: {
                const auto value = input.Any<uint32_t>();
                control.SetValue(value);
                Require(control.Value() == value, "the address that was set");
                break;
            }
            case 1:
                box = control.KeyDown(box, static_cast<CaretKey>(input.Byte() % 6));
                break;
            case 2:
                control.DoubleClick(box);
                break;
            case 3:
                Paste(control, box, input);
                break;
            case 4:
                Type(control, box, input.Any<char32_t>());
                break;
            case 5:
                box = control.BoxToFill();
                break;
            default:
                Type(control, box, U'0' + action / 8 % 10);
        }
        Require(box >= 0 && box <= ucIP::Leftmost, "one of the four boxes");
        RequireBoxes(control);
        RequireValue(control);
    }
    return 0;
}
