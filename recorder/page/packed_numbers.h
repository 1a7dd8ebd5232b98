// Numbers as a page holds them: the differences between neighbours, their bytes sorted by rank, deflated. What a sensor
// gives becomes a third of its size or less.
#pragma once

#include <zlib.h>

#include <cstddef>
#include <cstdint>
#include <list>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace corvane::recorder {

// Bytes in pieces: one string would double its memory while it grows.
using Pieces = std::list<std::string>;

class PackedNumbers {
public:
    static constexpr size_t BlockNumbers = 4096;  // the bytes of so many are sorted at once

    // `bytes` of each number that count, 1 to 4.
    explicit PackedNumbers(int bytes);

    void Add(std::span<const int32_t> numbers);
    // The next number begins anew: its difference is that from 0.
    void EndSeries();
    // Bytes so far, but for less than a hundred thousand that are being worked on.
    size_t Size() const { return Size_; }
    // The rest of the bytes. Nothing may follow.
    Pieces Finish();

private:
    struct Closer {
        void operator()(z_stream* stream) const;
    };

    void PackBlock();
    void Deflate(std::string_view bytes, int flush);

    int Bytes_;
    std::unique_ptr<z_stream, Closer> Stream_;
    std::vector<uint32_t> Block_;  // differences
    std::string Sorted_;
    uint32_t Last_ = 0;
    size_t Size_ = 0;
    Pieces Packed_;
};

// Appends as characters that text can hold. All pieces but the last are multiples of three bytes.
void AppendBase64(std::string& text, std::string_view bytes);

}  // namespace corvane::recorder
