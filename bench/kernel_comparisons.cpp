// The sample kernel: from calibrated codes to kadrs in the ring.
#include <emmintrin.h>

#include <memory>
#include <utility>

#include "bench/alternatives.h"
#include "bench/comparison.h"
#include "bench/modules.h"

namespace corvane::bench {

namespace {

// Modules on their way into a ring of full size that is written round and round.
class Road : public Modules {
public:
    explicit Road(std::vector<int16_t> table) : Modules(std::move(table)), Ring_(Table.size() * RingKadrs) {}

    int16_t* NextPlace(int32_t kadrs) {
        if (Place_ + static_cast<size_t>(kadrs) * Table.size() > Ring_.size()) Place_ = 0;
        int16_t* place = &Ring_[Place_];
        Place_ += static_cast<size_t>(kadrs) * Table.size();
        return place;
    }

    void ReadModules() const {
        for (size_t m = 0; m < Table.size() / ModuleChannels; m++) {
            ReadAll(Engine.Modules[m].Block.data(), Engine.Modules[m].Block.size());
        }
    }

    // Throws the blocks and the next place in the ring out of all caches.
    void Flush() {
        for (const ModuleRecord& module : Engine.Modules) FlushBytes(module.Block.data(), module.Block.size() * 8);
        FlushBytes(&Ring_[Place_ < Ring_.size() ? Place_ : 0], size_t{BlockKadrs} * Table.size() * 2);
        _mm_mfence();
    }

private:
    static void FlushBytes(const void* memory, size_t bytes) {
        for (size_t i = 0; i < bytes; i += 64) _mm_clflush(static_cast<const char*>(memory) + i);
    }

    std::vector<int16_t> Ring_;
    size_t Place_ = 0;
};

void AddDense(std::vector<Comparison>& rows, int channels) {
    const auto road = std::make_shared<Road>(FirstChannels(channels));
    const auto output = std::make_shared<std::vector<int16_t>>(static_cast<size_t>(channels * BlockKadrs));
    const std::string name = "StoreBlock, " + std::to_string(channels) + " channels";
    const auto store = [road] { StoreBlock(road->Plan, BlockKadrs, road->NextPlace(BlockKadrs)); };
    const auto read = [road] { road->ReadModules(); };
    rows.push_back({name, "reading the doubles", Goal::CostAtMost, 3, store, read});
    rows.push_back({name, "memcpy of the samples", Goal::CostAtMost, 6, store, [road, output] {
                        CopyBytes(road->NextPlace(BlockKadrs), output->data(), output->size() * sizeof(int16_t));
                    }});
    rows.push_back({name, "four steps a channel", Goal::FasterAtLeast, 8, store,
                    [road] { StepByStep(road->Engine, road->Table, BlockKadrs, road->NextPlace(BlockKadrs)); }});
    rows.push_back({name, "one scalar pass", Goal::FasterAtLeast, 2, store, [road, channels] {
                        FusedScalar(road->Engine, channels, BlockKadrs, road->NextPlace(BlockKadrs));
                    }});
    rows.push_back({name + ", cold", "reading, cold", Goal::CostAtMost, 2.2, store, read, [road] { road->Flush(); }});
}

void AddSparse(std::vector<Comparison>& rows, const std::vector<int16_t>& table) {
    const auto road = std::make_shared<Road>(table);
    rows.push_back({"StoreBlock, " + std::to_string(table.size()) + " of 16 channels",
                    "a plain loop that sums these doubles", Goal::CostAtMost, 2,
                    [road] { StoreBlock(road->Plan, BlockKadrs, road->NextPlace(BlockKadrs)); },
                    [road] { ReadSelected(road->Plan, BlockKadrs); }});
}

}  // namespace

std::vector<Comparison> KernelComparisons() {
    std::vector<Comparison> rows;
    AddDense(rows, 16);
    AddDense(rows, 32);
    AddSparse(rows, {5});
    AddSparse(rows, {1, 6, 11});
    const auto slow = std::make_shared<Road>(FirstChannels(16));
    rows.push_back({"StoreBlock, 16 channels, one kadr", "four steps a channel", Goal::FasterAtLeast, 5,
                    [slow] { StoreBlock(slow->Plan, 1, slow->NextPlace(1)); },
                    [slow] { StepByStep(slow->Engine, slow->Table, 1, slow->NextPlace(1)); }});
    return rows;
}

}  // namespace corvane::bench
