// Which machine a program file is made for, as its head tells: a 32-bit driver binds to 32-bit libraries only.
#pragma once

#include <cstdint>
#include <span>

namespace corvane::recorder {

enum class Image { None, Windows32, Windows64, Other };  // None: no file of a Windows program at all

// Bytes of a file that are enough for ImageOf.
constexpr size_t ImageHeadBytes = 4096;

// `head`: the file's first bytes, ImageHeadBytes of them where it has as many.
Image ImageOf(std::span<const uint8_t> head);

}  // namespace corvane::recorder
