// Memory that runs out, in programs that link the library short_memory: its operator new takes the language's place.
#pragma once

namespace corvane {

// Counts the thread's allocations down; the one that brings it to 0 fails. At 0 none does.
extern thread_local int FailingAllocation;

}  // namespace corvane
