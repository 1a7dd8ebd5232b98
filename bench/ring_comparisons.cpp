// The ring: what taking kadrs costs the host, and how passing them on compares with a queue made for that.
#include <boost/lockfree/spsc_queue.hpp>
#include <cstring>
#include <memory>
#include <thread>

#include "bench/comparison.h"
#include "driver/model/input_state.h"

namespace corvane::bench {

namespace {

constexpr int32_t Channels = 16;
constexpr int32_t BlockKadrs = 64;
constexpr size_t BlockSamples = size_t{Channels} * BlockKadrs;
constexpr int32_t RingKadrs = 32768;
constexpr int32_t PassedKadrs = 1 << 20;  // of one run on two threads

using Queue = boost::lockfree::spsc_queue<int16_t, boost::lockfree::capacity<size_t{Channels} * RingKadrs>>;

// A ring, and a host's buffer as large.
struct Host {
    Host() : Buffer(size_t{Channels} * RingKadrs) {
        Input.ChTable.resize(Channels);
        PrepareInputBuffer(Input, BlockKadrs);
    }

    void Take(int32_t kadrs) {
        int32_t count = kadrs * Channels;
        int32_t remaining = 0;
        GetData(Input, Buffer.data(), count, remaining);
        Keep(Buffer.data());
    }

    InputState Input;
    std::vector<int16_t> Buffer;
};

void AddGetData(std::vector<Comparison>& rows, int32_t kadrs, double limit) {
    const auto host = std::make_shared<Host>();
    const auto source = std::make_shared<std::vector<int16_t>>(host->Buffer);
    const auto place = std::make_shared<size_t>(0);
    rows.push_back({"GetData, " + std::to_string(kadrs) + " kadrs of 16", "memcpy", Goal::CostAtMost, limit,
                    [host, kadrs] {
                        host->Input.Ring.Commit(kadrs);
                        host->Take(kadrs);
                    },
                    [host, source, place, kadrs] {
                        std::memcpy(host->Buffer.data(), source->data() + *place,
                                    size_t{Channels} * 2 * static_cast<size_t>(kadrs));
                        Keep(host->Buffer.data());
                        *place = (*place + size_t{Channels} * static_cast<size_t>(kadrs)) % source->size();
                    }});
}

// The recording thread's side: blocks of made-up samples until `kadrs` have gone through.
void WriteKadrs(DataRing& ring, const int16_t* block, int32_t kadrs) {
    for (int32_t written = 0; written < kadrs; written += BlockKadrs) {
        while (!ring.Room(BlockKadrs)) std::this_thread::yield();
        std::memcpy(ring.WritePlace(), block, BlockSamples * sizeof(int16_t));
        ring.Commit(BlockKadrs);
    }
}

void PassThroughRing(Host& host) {
    const std::vector<int16_t> block(BlockSamples, 1);
    std::thread writer([&] { WriteKadrs(host.Input.Ring, block.data(), PassedKadrs); });
    for (int32_t taken = 0; taken < PassedKadrs;) {
        const int32_t kadrs = host.Input.Ring.Read(host.Buffer.data(), BlockKadrs);
        if (kadrs == 0) std::this_thread::yield();
        taken += kadrs;
    }
    writer.join();
}

void PassThroughQueue(Queue& queue, std::vector<int16_t>& buffer) {
    const std::vector<int16_t> block(BlockSamples, 1);
    constexpr size_t Samples = size_t{PassedKadrs} * Channels;
    std::thread writer([&] {
        for (size_t written = 0; written < Samples;) {
            const size_t room = std::min(BlockSamples, Samples - written);
            const size_t pushed = queue.push(block.data(), room);
            if (pushed == 0) std::this_thread::yield();
            written += pushed;
        }
    });
    for (size_t taken = 0; taken < Samples;) {
        const size_t popped = queue.pop(buffer.data(), BlockSamples);
        if (popped == 0) std::this_thread::yield();
        taken += popped;
    }
    writer.join();
}

}  // namespace

std::vector<Comparison> RingComparisons() {
    std::vector<Comparison> rows;
    const auto host = std::make_shared<Host>();
    rows.push_back(
        {"GetData, nothing unread", "", Goal::NanosecondsAtMost, 15, [host] { host->Take(BlockKadrs); }, [] {}});
    AddGetData(rows, 64, 1.5);
    AddGetData(rows, 512, 1.15);
    AddGetData(rows, 4096, 1.05);
    AddGetData(rows, 16384, 1.05);
    const auto queue = std::make_shared<Queue>();
    const auto block = std::make_shared<std::vector<int16_t>>(BlockSamples, int16_t{1});
    rows.push_back({"Ring, a block in and out", "boost spsc_queue in bulk", Goal::CostAtMost, 1.25,
                    [host, block] {
                        WriteKadrs(host->Input.Ring, block->data(), BlockKadrs);
                        host->Input.Ring.Read(host->Buffer.data(), BlockKadrs);
                        Keep(host->Buffer.data());
                    },
                    [host, queue, block] {
                        queue->push(block->data(), BlockSamples);
                        queue->pop(host->Buffer.data(), BlockSamples);
                        Keep(host->Buffer.data());
                    }});
    rows.push_back({"Ring, two threads", "boost spsc_queue in bulk", Goal::CostAtMost, 1,
                    [host] { PassThroughRing(*host); }, [host, queue] { PassThroughQueue(*queue, host->Buffer); }});
    return rows;
}

}  // namespace corvane::bench
