#pragma once

#include <stdexcept>

namespace ltrsim {

// What is wrong with a scenario. Message: "source:line: key 'x': reason".
struct ScenarioError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

}  // namespace ltrsim
