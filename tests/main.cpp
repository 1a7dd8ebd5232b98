// Entry of every test executable: GoogleTest under a watchdog. CORVANE_TEST_SECONDS sets its time.
#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <thread>

// Where memory is short, allocations fail as they do without a sanitizer.
// NOLINTBEGIN(bugprone-reserved-identifier,readability-identifier-naming): the sanitizers look for these names
extern "C" const char* __asan_default_options() {
    return "allocator_may_return_null=1";
}
extern "C" const char* __tsan_default_options() {
    return "allocator_may_return_null=1";
}
// NOLINTEND(bugprone-reserved-identifier,readability-identifier-naming)

namespace {

void StartWatchdog(int seconds) {
    std::thread([seconds] {
        std::this_thread::sleep_for(std::chrono::seconds(seconds));
        const testing::TestInfo* test = testing::UnitTest::GetInstance()->current_test_info();
        std::fprintf(stderr, "watchdog: %s.%s still runs after %d s\n", test ? test->test_suite_name() : "-",
                     test ? test->name() : "-", seconds);
        std::fflush(stderr);
        std::_Exit(124);
    }).detach();
}

}  // namespace

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    const char* seconds = std::getenv("CORVANE_TEST_SECONDS");
    StartWatchdog(seconds ? std::atoi(seconds) : 600);
    return RUN_ALL_TESTS();
}
