// The ring: what taking kadrs costs the host, and how passing them on compares with a queue made for that.
#include <algorithm>
#include <boost/lockfree/spsc_queue.hpp>
#include <memory>

#include "bench/comparison.h"
#include "bench/modules.h"
#include "driver/model/input_state.h"

namespace corvane::bench {

namespace {

using Queue = boost::lockfree::spsc_queue<int16_t, boost::lockfree::capacity<size_t{ModuleChannels} * RingKadrs>>;

// A ring, and a host's buffer as large.
struct Host {
    Host() : Buffer(size_t{ModuleChannels} * RingKadrs) {
        Input.ChTable.resize(ModuleChannels);
        PrepareInputBuffer(Input, BlockKadrs);
        // Memory that was never written is one page of zeros, always in the nearest cache.
        for (int32_t kadrs = 0; kadrs < Input.Ring.Length(); kadrs += BlockKadrs) {
            std::fill_n(Input.Ring.BlockToWrite(), BlockSamples, int16_t{1});
            Input.Ring.Commit(BlockKadrs);
        }
        Take(Input.Ring.Length());
    }

    void Take(int32_t kadrs) {
        int32_t count = kadrs * ModuleChannels;
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
                        CopyBytes(host->Buffer.data(), source->data() + *place,
                                  size_t{ModuleChannels} * 2 * static_cast<size_t>(kadrs));
                        Keep(host->Buffer.data());
                        *place = (*place + size_t{ModuleChannels} * static_cast<size_t>(kadrs)) % source->size();
                    }});
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
                        DataRing& ring = host->Input.Ring;
                        if (!ring.Room(BlockKadrs)) return;
                        CopyBytes(ring.BlockToWrite(), block->data(), BlockSamples * sizeof(int16_t));
                        ring.Commit(BlockKadrs);
                        ring.Read(host->Buffer.data(), BlockKadrs);
                        Keep(host->Buffer.data());
                    },
                    [host, queue, block] {
                        queue->push(block->data(), BlockSamples);
                        queue->pop(host->Buffer.data(), BlockSamples);
                        Keep(host->Buffer.data());
                    }});
    rows.push_back(TwoCoreComparison());
    return rows;
}

}  // namespace corvane::bench
