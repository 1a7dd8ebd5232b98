#include "recorder/setup/image_file.h"

namespace corvane::recorder {
namespace {

// Of Microsoft's description of the portable executable.
constexpr size_t PlaceOfNewHead = 0x3C;
constexpr uint32_t DosMark = 0x5A4D;  // "MZ"
constexpr uint32_t NewMark = 0x4550;  // "PE" and two zeros
constexpr uint32_t MachineI386 = 0x014C;
constexpr uint32_t MachineAmd64 = 0x8664;

// Little endian. Behind the end: 0, which is none of the marks.
uint32_t NumberAt(std::span<const uint8_t> head, size_t place, size_t bytes) {
    if (place > head.size() || bytes > head.size() - place) return 0;
    uint32_t number = 0;
    for (size_t i = bytes; i-- > 0;) number = number << 8 | head[place + i];
    return number;
}

}  // namespace

Image ImageOf(std::span<const uint8_t> head) {
    const size_t newHead = NumberAt(head, PlaceOfNewHead, 4);
    if (NumberAt(head, 0, 2) != DosMark || NumberAt(head, newHead, 4) != NewMark) return Image::None;
    switch (NumberAt(head, newHead + 4, 2)) {
        case MachineI386:
            return Image::Windows32;
        case MachineAmd64:
            return Image::Windows64;
        default:
            return Image::Other;
    }
}

}  // namespace corvane::recorder
