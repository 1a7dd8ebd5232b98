#include "selection/ucIP.h"

#include <algorithm>
#include <string_view>

namespace corvane {

namespace {

constexpr size_t MaxDigits = 3;
constexpr int NotAnOctet = -1;

// Plain digits are the only numbers: what else a locale takes for one (signs, fractions, digits of other scripts) has
// no place in an address.
int OctetOf(std::string_view text) {
    if (text.empty()) return NotAnOctet;
    int value = 0;
    for (const char character : text) {
        if (character < '0' || character > '9') return NotAnOctet;
        value = value * 10 + (character - '0');
        if (value > 255) return NotAnOctet;
    }
    return value;
}

}  // namespace

uint32_t ucIP::Value() {
    uint32_t value = 0;
    for (int i = 0; i <= Leftmost; i++) {
        const int octet = OctetOf(Box(i).Text);
        if (octet == NotAnOctet) {
            Box(i) = {{}, 0, 0, {}};
            return 0;
        }
        value |= static_cast<uint32_t>(octet) << 8 * i;
    }
    return value;
}

void ucIP::SetValue(uint32_t netAddr) {
    for (int i = 0; i <= Leftmost; i++) {
        const std::string text = std::to_string(netAddr >> 8 * i & 0xFF);
        Box(i) = {text, 0, 0, text};
    }
}

int ucIP::KeyDown(int box, CaretKey key) {
    const OctetBox& from = Box(box);
    const bool atStart = from.SelStart == 0;
    const bool atEnd = from.SelStart + from.SelLength == from.Text.size();
    switch (key) {
        case CaretKey::Left:
        case CaretKey::Up:
            return box < Leftmost && atStart ? MoveTo(box + 1, true) : box;
        case CaretKey::Right:
        case CaretKey::Down:
            return box > 0 && atEnd ? MoveTo(box - 1, false) : box;
        case CaretKey::Home:
            return box < Leftmost ? MoveTo(Leftmost, false) : box;
        case CaretKey::End:
            return box > 0 ? MoveTo(0, true) : box;
    }
    return box;
}

bool ucIP::Accepts(int box, char32_t character) const {
    if (character < U' ') return true;
    if (character < U'0' || character > U'9') return false;
    const OctetBox& into = Box(box);
    const size_t start = std::min(into.SelStart, into.Text.size());
    std::string text = into.Text;
    text.replace(start, into.SelLength, 1, static_cast<char>(character));
    if (text.size() > MaxDigits || OctetOf(text) == NotAnOctet) return false;
    return character != U'0' || !text.starts_with("00");
}

// A rewritten text needs no second look: it is a number without leading zeros, or the accepted text, which was one.
int ucIP::TextChanged(int box) {
    OctetBox& changed = Box(box);
    std::string text;
    if (!changed.Text.empty()) {
        const int octet = OctetOf(changed.Text);
        text = octet == NotAnOctet ? changed.Accepted : std::to_string(octet);
    }
    if (text != changed.Text) {
        // The caret stays where it was, as far as the text reaches, but never behind a third digit: there it would take
        // the focus along.
        changed.SelStart = std::min({changed.SelStart, text.size(), MaxDigits - 1});
        changed.SelLength = 0;
        changed.Text = text;
    }
    changed.Accepted = text;
    return changed.SelStart == MaxDigits && box > 0 ? MoveTo(box - 1, false) : box;
}

void ucIP::DoubleClick(int box) {
    Box(box).SelStart = 0;
    Box(box).SelLength = Box(box).Text.size();
}

int ucIP::BoxToFill() const {
    for (int i = Leftmost; i >= 0; i--) {
        if (Box(i).Text.empty()) return i;
    }
    return Leftmost;
}

int ucIP::MoveTo(int box, bool end) {
    Box(box).SelStart = end ? Box(box).Text.size() : 0;
    Box(box).SelLength = 0;
    return box;
}

}  // namespace corvane
