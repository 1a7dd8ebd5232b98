// The head of a NumPy file, format 1.0, of a table of 16-bit samples: a row for each kadr, a column for each channel.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace corvane::recorder {

constexpr size_t NpyHeadSize = 128;  // bytes of those written here, whatever the numbers

struct NpyShape {
    int64_t Kadrs = 0;
    int64_t Channels = 0;
    size_t HeadSize = NpyHeadSize;  // where the samples begin
};

std::string NpyHead(int64_t kadrs, size_t channels);

// `start`: the file's first bytes, at least its head. None: it is no such file.
std::optional<NpyShape> ParseNpyHead(std::string_view start);

}  // namespace corvane::recorder
