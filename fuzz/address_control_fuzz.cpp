// The IP address control with any sequence of keys, characters, pastes and clicks, each followed by what an edit box
// does with it by itself.
#include "fuzz/fuzz_input.h"
#include "selection/ucIP.h"

namespace corvane {
namespace {

// A number 0 to 255 without needless zeros; -1 for anything else.
int Octet(const std::string& text) {
    const int value = std::atoi(text.c_str());
    return value >= 0 && value <= 255 && text == std::to_string(value) ? value : -1;
}

// A third of all characters are digits.
char32_t Character(FuzzInput& input) {
    const uint8_t kind = input.Byte();
    const uint8_t low = input.Byte();
    if (kind < 85) return U'0' + low % 10;
    return static_cast<char32_t>(kind < 170 ? low : kind % 17 << 16 | input.Byte() << 8 | low);
}

class Window {
public:
    void Act(FuzzInput& input) {
        switch (input.Byte() % 8) {
            case 0:
                Press(static_cast<CaretKey>(input.Byte() % 6));
                break;
            case 1:
                Type(Character(input));
                break;
            case 2:
                Replace(input.Text(), input.Byte());
                break;
            case 3:
                Delete(0);
                break;
            case 4:
                Write(input);
                break;
            case 5:
                Control_.DoubleClick(Focus_);
                break;
            default:
                Focus_ = input.Byte() % 4;
                Box(Focus_).SelStart = input.Byte() % (Box(Focus_).Text.size() + 1);
                Box(Focus_).SelLength = input.Byte() % (Box(Focus_).Text.size() - Box(Focus_).SelStart + 1);
        }
    }

    void RequireOctets() {
        Require(Focus_ >= 0 && Focus_ <= ucIP::Leftmost, "a box has the focus");
        uint32_t address = 0;
        bool gap = false;
        for (int i = ucIP::Leftmost; i >= 0; i--) {
            const OctetBox& box = Box(i);
            Require(box.Text.empty() || Octet(box.Text) >= 0, "nothing or an octet");
            Require(box.SelStart + box.SelLength <= box.Text.size(), "the caret is in the text");
            gap = gap || box.Text.empty();
            address = address << 8 | static_cast<uint32_t>(Octet(box.Text) & 0xFF);
        }
        Require(Control_.Value() == (gap ? 0 : address), "Value is what the boxes show");
    }

private:
    OctetBox& Box(int index) { return Control_.txtIP[static_cast<size_t>(index)]; }

    // The box that had the focus moves its caret, too.
    void Press(CaretKey key) {
        OctetBox& from = Box(Focus_);
        const bool back = key == CaretKey::Left || key == CaretKey::Up;
        Focus_ = Control_.KeyDown(Focus_, key);
        if (key == CaretKey::Home) from.SelStart = 0;
        if (key == CaretKey::End) from.SelStart = from.Text.size();
        if (back && from.SelStart > 0) from.SelStart--;
        if (key == CaretKey::Right || key == CaretKey::Down) from.SelStart += from.SelStart < from.Text.size();
        from.SelLength = 0;
    }

    void Type(char32_t character) {
        const bool accepted = Control_.Accepts(Focus_, character);
        if (character < U' ') {
            Require(accepted, "control characters pass");
            if (character == U'\b' && Box(Focus_).SelStart + Box(Focus_).SelLength > 0) Delete(1);
        } else if (accepted) {
            Require(character >= U'0' && character <= U'9', "nothing but digits");
            const int box = Focus_;
            const std::string typed = Replace({static_cast<char>(character)}, 1);
            Require(typed.size() <= 3 && std::stoi(typed) == Octet(Box(box).Text), "what was typed stays");
        }
    }

    // Puts the text in the place of the selection, the caret so far behind its beginning. The text before the control
    // has had its say.
    std::string Replace(const std::string& by, size_t caret) {
        OctetBox& box = Box(Focus_);
        box.Text.replace(box.SelStart, box.SelLength, by);
        box.SelStart = std::min(box.SelStart + caret, box.Text.size());
        box.SelLength = 0;
        std::string made = box.Text;
        const std::array<OctetBox, 4> before = Control_.txtIP;
        const int from = Focus_;
        Focus_ = Control_.TextChanged(from);
        Require(Focus_ == from || (Focus_ == from - 1 && Box(Focus_).SelStart == 0), "on to the next box's start");
        for (int i = 0; i <= ucIP::Leftmost; i++) {
            Require(i == from || Box(i).Text == before[static_cast<size_t>(i)].Text, "the other boxes stay");
        }
        return made;
    }

    // So many characters before the caret, or the one behind it; the selection when there is one.
    void Delete(size_t before) {
        OctetBox& box = Box(Focus_);
        if (box.SelLength == 0) {
            box.SelStart -= before;
            box.SelLength = box.SelStart < box.Text.size() ? 1 : 0;
        }
        if (box.SelLength > 0) Replace({}, 0);
    }

    void Write(FuzzInput& input) {
        uint32_t address = 0;
        for (int i = 0; i < 4; i++) address = address << 8 | input.Byte();
        Control_.SetValue(address);
        Require(Control_.Value() == address, "Value is what was written");
    }

    ucIP Control_;
    int Focus_ = ucIP::Leftmost;
};

}  // namespace
}  // namespace corvane

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace corvane;
    FuzzInput input(data, size);
    Window window;
    while (!input.Empty()) {
        window.Act(input);
        window.RequireOctets();
    }
    return 0;
}
