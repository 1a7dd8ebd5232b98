// The ring of kadrs between the recording thread and the host: one writer, one reader, no lock, nothing lost.
//
// Memory is allocated only by ResetInputBuffer, while no writer runs. The writer adds whole blocks (Room, BlockToWrite,
// Commit) and never overwrites an unread kadr; the ring's length must be a multiple of the block, so that no block
// wraps. The reader takes any number of kadrs (CountUnreadKadrs, Read). The two counters don't start anew at the ring's
// end: they count kadrs modulo 2^32, which is far more than a ring holds, so their difference tells a full ring from an
// empty one.
#pragma once

#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <memory>

namespace corvane {

class DataRing {
public:
    // Clears the ring and gives it these dimensions. Neither side may be active. False when the memory can't be had:
    // unread kadrs are kept then, while a ring without any may be gone.
    bool ResetInputBuffer(int32_t channels, int32_t kadrs);

    int32_t Channels() const { return Channels_; }  // samples of one kadr; 0 before the first ResetInputBuffer
    int32_t Length() const { return Length_; }      // kadrs

    // Writer's side.
    bool Room(int32_t kadrs) const { return Length_ - CountUnreadKadrs() >= kadrs; }
    int16_t* BlockToWrite() { return Samples_.get() + Offset(WriteIndex_); }  // valid for one block, once there is Room
    void Commit(int32_t kadrs);                                               // makes the block visible to the reader

    // Reader's side. Read copies up to `kadrs` unread kadrs in at most two moves and returns how many; nothing for a
    // count below 1.
    int32_t CountUnreadKadrs() const {
        return static_cast<int32_t>(Written_.load(std::memory_order_acquire) - Read_.load(std::memory_order_acquire));
    }
    int32_t Read(int16_t* destination, int32_t kadrs);
    // Kadrs since the last ResetInputBuffer, however long the recording runs.
    int64_t KadrsRead() const { return KadrsRead_; }
    int64_t KadrsRecorded() const { return KadrsRead_ + CountUnreadKadrs(); }

private:
    struct Free {
        void operator()(int16_t* samples) const { std::free(samples); }
    };
    size_t Offset(int32_t index) const { return static_cast<size_t>(index) * static_cast<size_t>(Channels_); }

    std::unique_ptr<int16_t[], Free> Samples_;
    int32_t Channels_ = 0;
    int32_t Length_ = 0;

    // Each side's variables have a cache line of their own, so that storing them doesn't slow the other side down.
    alignas(64) std::atomic<uint32_t> Written_ = 0;  // kadrs; only the writer stores
    int32_t WriteIndex_ = 0;                         // 0-based, the writer's alone
    alignas(64) std::atomic<uint32_t> Read_ = 0;     // kadrs; only the reader stores
    int32_t ReadIndex_ = 0;                          // 0-based, the reader's alone
    int64_t KadrsRead_ = 0;                          // the reader's alone
};

}  // namespace corvane
