#include "standins/short_memory.h"

#include <cstdlib>
#include <new>

namespace corvane {

thread_local int FailingAllocation = 0;

}  // namespace corvane

[[gnu::noinline]] void* operator new(size_t size) {
    int& failing = corvane::FailingAllocation;
    void* const memory = failing > 0 && --failing == 0 ? nullptr : std::malloc(size);
    if (memory == nullptr) throw std::bad_alloc();
    return memory;
}
[[gnu::noinline]] void operator delete(void* memory) noexcept {
    std::free(memory);
}
[[gnu::noinline]] void operator delete(void* memory, size_t) noexcept {
    std::free(memory);
}
