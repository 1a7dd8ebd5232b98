// The IP address control: four boxes of one octet each, which never hold anything but nothing or a number 0 to 255.
//
// The window brings a box's text and selection into `txtIP` before it reports what happened there, and shows all of
// `txtIP` afterwards. Functions that may move the focus return the box that has it then. Anything may have got into a
// box meanwhile; positions count characters.
#pragma once

#include <array>
#include <cstdint>
#include <string>

namespace corvane {

enum class CaretKey { Left, Up, Right, Down, Home, End };

struct OctetBox {
    std::string Text = "0";
    size_t SelStart = 0;
    size_t SelLength = 0;
    std::string Accepted;  // the text that an unacceptable one gives way to
};

class ucIP {
public:
    static constexpr int Leftmost = 3;  // the most significant octet; box 0 is the rightmost

    // 0 when a box holds no number; the first such box from the right is emptied then.
    uint32_t Value();
    void SetValue(uint32_t netAddr);

    // Before the box's own handling, which goes on.
    int KeyDown(int box, CaretKey key);
    // False: the typed character is to be dropped. Control characters, pasting among them, always pass.
    bool Accepts(int box, char32_t character) const;
    // After every change of a box's text that comes from its window.
    int TextChanged(int box);
    void DoubleClick(int box);

    // Where the user is to go on after an address that was none: the leftmost empty box, otherwise the leftmost.
    int BoxToFill() const;

    std::array<OctetBox, 4> txtIP;

private:
    OctetBox& Box(int index) { return txtIP[static_cast<size_t>(index)]; }
    const OctetBox& Box(int index) const { return txtIP[static_cast<size_t>(index)]; }
    int MoveTo(int box, bool end);
};

}  // namespace corvane
