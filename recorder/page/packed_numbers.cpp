#include "recorder/page/packed_numbers.h"

#include <new>

namespace corvane::recorder {
namespace {

constexpr size_t PieceSize = 30000;  // bytes; a multiple of three

// Small differences of either sign become small numbers.
uint32_t WithoutSign(uint32_t difference, int bits) {
    const uint32_t top = difference << (32 - bits);
    return (difference << 1) ^ ((top >> 31) != 0 ? UINT32_MAX : 0);
}

}  // namespace

void PackedNumbers::Closer::operator()(z_stream* stream) const {
    deflateEnd(stream);
    delete stream;
}

PackedNumbers::PackedNumbers(int bytes) : Bytes_(bytes), Stream_(new z_stream{}) {
    // Noise never repeats itself: looking for more than runs of one byte would take time and bring nothing. This needs
    // no large window, either.
    constexpr int Level = 6, Window = -9, Memory = 8;
    if (deflateInit2(Stream_.get(), Level, Z_DEFLATED, Window, Memory, Z_RLE) != Z_OK) throw std::bad_alloc();
    Block_.reserve(BlockNumbers);
}

void PackedNumbers::Add(std::span<const int32_t> numbers) {
    for (const int32_t number : numbers) {
        const auto next = static_cast<uint32_t>(number);
        Block_.push_back(WithoutSign(next - Last_, 8 * Bytes_));
        Last_ = next;
        if (Block_.size() == BlockNumbers) PackBlock();
    }
}

void PackedNumbers::EndSeries() {
    PackBlock();
    Last_ = 0;
}

void PackedNumbers::PackBlock() {
    Sorted_.resize(Block_.size() * static_cast<size_t>(Bytes_));
    char* place = Sorted_.data();
    for (int shift = 0; shift < 8 * Bytes_; shift += 8) {
        for (const uint32_t number : Block_) *place++ = static_cast<char>(number >> shift);
    }
    Block_.clear();
    Deflate(Sorted_, Z_NO_FLUSH);
}

void PackedNumbers::Deflate(std::string_view bytes, int flush) {
    Stream_->next_in = reinterpret_cast<Bytef*>(const_cast<char*>(bytes.data()));
    Stream_->avail_in = static_cast<uInt>(bytes.size());
    int result = Z_OK;
    do {
        if (Packed_.empty() || Packed_.back().size() == PieceSize) {
            Packed_.emplace_back();
            Packed_.back().reserve(PieceSize);
        }
        std::string& piece = Packed_.back();
        const size_t before = piece.size();
        piece.resize(PieceSize);
        Stream_->next_out = reinterpret_cast<Bytef*>(piece.data() + before);
        Stream_->avail_out = static_cast<uInt>(PieceSize - before);
        result = deflate(Stream_.get(), flush);
        piece.resize(PieceSize - Stream_->avail_out);
        Size_ += piece.size() - before;
    } while (Stream_->avail_in > 0 || (flush == Z_FINISH && result != Z_STREAM_END));
}

Pieces PackedNumbers::Finish() {
    EndSeries();
    Deflate({}, Z_FINISH);
    return std::move(Packed_);
}

void AppendBase64(std::string& text, std::string_view bytes) {
    static constexpr char Digits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    for (size_t i = 0; i < bytes.size(); i += 3) {
        uint32_t three = 0;
        for (size_t k = i; k < i + 3; k++) three = three << 8 | (k < bytes.size() ? static_cast<uint8_t>(bytes[k]) : 0);
        for (int shift = 18; shift >= 0; shift -= 6) text += Digits[three >> shift & 63];
    }
    if (bytes.size() % 3 != 0)
        text.replace(text.size() - (3 - bytes.size() % 3), std::string::npos, 3 - bytes.size() % 3, '=');
}

}  // namespace corvane::recorder
