// InputData as a host calls it.
#pragma once

#include <cstddef>
#include <memory>

namespace corvane::bench {

// One more object on this thread's device.
class InputDataHost {
public:
    InputDataHost();
    ~InputDataHost();
    InputDataHost(const InputDataHost&) = delete;
    InputDataHost& operator=(const InputDataHost&) = delete;

    // Takes everything unread, in memory that is freed with the next taking. Number of samples.
    size_t Take();

private:
    struct Driver;
    std::unique_ptr<Driver> Driver_;
};

}  // namespace corvane::bench
