// The IP address control: four boxes of one octet each. Each is empty or holds a number from 0 to 255.
//
// The window copies a box's text and selection to `txtIP` before it reports an event there, and shows all of `txtIP`
// afterwards. What it copies may be any text, for example a pasted one. Functions that may move the focus return the
// box that is to have it. Positions count characters.
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
    std::string Accepted;  // the last valid text, which replaces an invalid one
};

class ucIP {
public:
    static constexpr int Leftmost = 3;  // the most significant octet; box 0 is the rightmost

    // 0 when a box holds no number; the first such box from the right is emptied then.
    uint32_t Value();
    void SetValue(uint32_t netAddr);

    // Called before the box handles the key itself, which it does in any case.
    int KeyDown(int box, CaretKey key);
    // False: the typed character is to be dropped. Control characters, such as that of pasting, are always accepted.
    bool Accepts(int box, char32_t character) const;
    // Called after every change of a box's text that the window reports.
    int TextChanged(int box);
    void DoubleClick(int box);

    // The box that gets the focus when the boxes hold no address: the leftmost empty one, otherwise the leftmost.
    int BoxToFill() const;

    std::array<OctetBox, 4> txtIP;

private:
    OctetBox& Box(int index) { return txtIP[static_cast<size_t>(index)]; }
    const OctetBox& Box(int index) const { return txtIP[static_cast<size_t>(index)]; }
    int MoveTo(int box, bool end);
};

}  // namespace corvane
