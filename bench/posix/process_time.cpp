#include "bench/process_time.h"

#include <ctime>

namespace corvane::bench {

double ProcessSeconds() {
    timespec time = {};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

}  // namespace corvane::bench
