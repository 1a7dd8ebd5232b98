#include "bench/input_data.h"

#include <cstdlib>

#include "driver/driver_object.h"

namespace corvane::bench {

struct InputDataHost::Driver {
    ~Driver() { std::free(Data); }
    DriverObject Object;
    int16_t* Data = nullptr;
};

InputDataHost::InputDataHost() : Driver_(std::make_unique<Driver>()) {}
InputDataHost::~InputDataHost() = default;

size_t InputDataHost::Take() {
    std::free(Driver_->Data);
    const InputDataShape shape = Driver_->Object.NextInputData();
    const size_t samples = static_cast<size_t>(shape.Channels) * static_cast<size_t>(shape.Kadrs + 1);
    Driver_->Data = static_cast<int16_t*>(std::malloc(samples * sizeof(int16_t)));
    Driver_->Object.TakeInputData(shape, Driver_->Data);
    return samples;
}

}  // namespace corvane::bench
