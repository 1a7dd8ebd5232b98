// A recording thread on one core and a host on another, both as fast as they can: by way of the ring, and of a queue
// made for passing samples on.
#include <sched.h>

#include <algorithm>
#include <array>
#include <boost/lockfree/spsc_queue.hpp>
#include <functional>
#include <memory>
#include <thread>
#include <vector>

#include "bench/comparison.h"
#include "bench/modules.h"
#include "driver/model/data_ring.h"

namespace corvane::bench {

namespace {

constexpr int32_t PassedKadrs = 1 << 20;  // through each ring or queue
constexpr size_t PassedSamples = size_t{PassedKadrs} * ModuleChannels;
constexpr int Places = 8;  // rings, and queues: where one lies in memory alone makes up to a tenth of a difference

using Queue = boost::lockfree::spsc_queue<int16_t, boost::lockfree::capacity<size_t{ModuleChannels} * RingKadrs>>;
using Block = std::array<int16_t, BlockSamples>;

// The cores that this thread may run on.
std::vector<size_t> UsableCores() {
    cpu_set_t usable;
    CPU_ZERO(&usable);
    sched_getaffinity(0, sizeof(usable), &usable);
    std::vector<size_t> cores;
    for (size_t core = 0; core < CPU_SETSIZE; core++) {
        if (CPU_ISSET(core, &usable)) cores.push_back(core);
    }
    if (cores.empty()) cores.push_back(0);
    return cores;
}

void StayOnCore(size_t core) {
    cpu_set_t one;
    CPU_ZERO(&one);
    CPU_SET(core, &one);
    sched_setaffinity(0, sizeof(one), &one);
}

// Runs both sides at once, each on a core of its own. Left to the scheduler they now and then share one; they take
// turns with a whole ring then, and what is measured is the scheduler.
void RunOnTwoCores(const std::function<void()>& write, const std::function<void()>& read) {
    const std::vector<size_t> cores = UsableCores();
    const std::jthread writer([&] {
        StayOnCore(cores.front());
        write();
    });
    const std::jthread reader([&] {
        StayOnCore(cores.back());
        read();
    });
}

// The recording thread's side: the kernel writes straight into the ring ...
void Write(DataRing& ring, const StorePlan& plan) {
    for (int32_t written = 0; written < PassedKadrs; written += BlockKadrs) {
        while (!ring.Room(BlockKadrs)) std::this_thread::yield();
        StoreBlock(plan, BlockKadrs, ring.BlockToWrite());
        ring.Commit(BlockKadrs);
    }
}

// ... while a queue takes finished blocks only.
void Write(Queue& queue, const StorePlan& plan) {
    Block block;
    for (int32_t written = 0; written < PassedKadrs; written += BlockKadrs) {
        StoreBlock(plan, BlockKadrs, block.data());
        for (size_t pushed = 0; pushed < block.size();) {
            const size_t part = queue.push(block.data() + pushed, block.size() - pushed);
            if (part == 0) std::this_thread::yield();
            pushed += part;
        }
    }
}

// The host's side.
void Read(DataRing& ring) {
    Block block;
    for (int32_t taken = 0; taken < PassedKadrs;) {
        const int32_t kadrs = ring.Read(block.data(), BlockKadrs);
        if (kadrs == 0) std::this_thread::yield();
        taken += kadrs;
    }
}

void Read(Queue& queue) {
    Block block;
    for (size_t taken = 0; taken < PassedSamples;) {
        const size_t popped = queue.pop(block.data(), block.size());
        if (popped == 0) std::this_thread::yield();
        taken += popped;
    }
}

// Each in memory of its own: a large common piece could get pages of another size.
template <typename Passage>
using Passages = std::vector<std::unique_ptr<Passage>>;

template <typename Passage>
std::function<void()> PassThroughAll(const std::shared_ptr<Passages<Passage>>& passages,
                                     const std::shared_ptr<Modules>& modules) {
    return [passages, modules] {
        RunOnTwoCores(
            [&] {
                for (const auto& passage : *passages) Write(*passage, modules->Plan);
            },
            [&] {
                for (const auto& passage : *passages) Read(*passage);
            });
    };
}

}  // namespace

Comparison TwoCoreComparison() {
    const auto modules = std::make_shared<Modules>(FirstChannels(ModuleChannels));
    const auto rings = std::make_shared<Passages<DataRing>>();
    const auto queues = std::make_shared<Passages<Queue>>();
    for (int place = 0; place < Places; place++) {
        rings->push_back(std::make_unique<DataRing>());
        rings->back()->ResetInputBuffer(ModuleChannels, RingKadrs);
        queues->push_back(std::make_unique<Queue>());
    }
    return {"StoreBlock to the host on two cores", "boost spsc_queue in bulk",     Goal::CostAtMost, 1,
            PassThroughAll(rings, modules),        PassThroughAll(queues, modules)};
}

}  // namespace corvane::bench
