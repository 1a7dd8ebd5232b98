#include "bench/process_time.h"

#include <windows.h>

namespace corvane::bench {

namespace {

double Seconds(const FILETIME& time) {
    return (static_cast<double>(time.dwHighDateTime) * 4294967296.0 + time.dwLowDateTime) * 1e-7;
}

}  // namespace

double ProcessSeconds() {
    FILETIME created, ended, kernel, user;
    if (!GetProcessTimes(GetCurrentProcess(), &created, &ended, &kernel, &user)) return 0;
    return Seconds(kernel) + Seconds(user);
}

}  // namespace corvane::bench
