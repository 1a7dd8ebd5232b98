#include "selection/ucIP.h"

#include <algorithm>
#include <optional>

#include "base/dotted_address.h"

namespace corvane {

uint32_t ucIP::Value() {
    uint32_t value = 0;
    for (int i = 0; i <= Leftmost; i++) {
        const std::optional<uint8_t> octet = ParseOctet(Box(i).Text);
        if (!octet) {
            Box(i) = {{}, 0, 0, {}};
            return 0;
        }
        value |= uint32_t{*octet} << 8 * i;
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
    if (text.size() > OctetDigits || !ParseOctet(text)) return false;
    return character != U'0' || !text.starts_with("00");
}

// A text that is replaced here needs no second check: it becomes a number without leading zeros, or the last accepted
// text, which was checked before.
int ucIP::TextChanged(int box) {
    OctetBox& changed = Box(box);
    std::string text;
    if (!changed.Text.empty()) {
        const std::optional<uint8_t> octet = ParseOctet(changed.Text);
        text = octet ? std::to_string(*octet) : changed.Accepted;
    }
    if (text != changed.Text) {
        // The caret stays where it was, as far as the text is long enough, but never after a third digit: that would
        // move the focus to the next box.
        changed.SelStart = std::min({changed.SelStart, text.size(), OctetDigits - 1});
        changed.SelLength = 0;
        changed.Text = text;
    }
    changed.Accepted = text;
    return changed.SelStart == OctetDigits && box > 0 ? MoveTo(box - 1, false) : box;
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
