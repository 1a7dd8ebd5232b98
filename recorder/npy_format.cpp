#include "recorder/npy_format.h"

#include <fmt/format.h>
#include <algorithm>
#include <charconv>

namespace corvane::recorder {
namespace {

constexpr std::string_view Magic("\x93NUMPY\x01\x00", 8);
constexpr size_t LengthSize = 2;  // bytes of the text's length, the lower one first

// Removes the prefix. False: there is none.
bool Take(std::string_view& text, std::string_view prefix) {
    if (!text.starts_with(prefix)) return false;
    text.remove_prefix(prefix.size());
    return true;
}

bool TakeCount(std::string_view& text, int64_t& count) {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), count);
    if (error != std::errc() || count < 0) return false;
    text.remove_prefix(static_cast<size_t>(end - text.data()));
    return true;
}

}  // namespace

std::string NpyHead(int64_t kadrs, size_t channels) {
    constexpr size_t TextSize = NpyHeadSize - Magic.size() - LengthSize;
    std::string head(Magic);
    head += static_cast<char>(TextSize);
    head += '\0';
    head += fmt::format("{{'descr': '<i2', 'fortran_order': False, 'shape': ({}, {}), }}", kadrs, channels);
    head.resize(NpyHeadSize - 1, ' ');
    return head + '\n';
}

std::optional<NpyShape> ParseNpyHead(std::string_view start) {
    if (start.size() < Magic.size() + LengthSize || !Take(start, Magic)) return std::nullopt;
    const size_t length = static_cast<uint8_t>(start[0]) + size_t{256} * static_cast<uint8_t>(start[1]);
    start.remove_prefix(LengthSize);
    if (length > start.size()) return std::nullopt;
    std::string dense(start.substr(0, length));
    std::erase_if(dense, [](char character) { return character == ' ' || character == '\n'; });
    std::string_view text = dense;
    NpyShape shape;
    shape.HeadSize = Magic.size() + LengthSize + length;
    const bool valid = Take(text, "{'descr':'<i2','fortran_order':False,'shape':(") && TakeCount(text, shape.Kadrs) &&
                       Take(text, ",") && TakeCount(text, shape.Channels) && (text == "),}" || text == ")}");
    return valid ? std::optional(shape) : std::nullopt;
}

}  // namespace corvane::recorder
