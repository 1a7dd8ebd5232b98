// What tests may change of the portable platform. Read by any thread.
#pragma once

#include <atomic>

namespace corvane::platform {

extern std::atomic<bool> SkipSleeps;          // SleepMs only yields: for long tests with a simulator that does not wait
extern std::atomic<bool> FailThreadCreation;  // Thread::Create fails

}  // namespace corvane::platform
