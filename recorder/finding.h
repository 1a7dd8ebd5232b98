// What the doctor finds at one step.
#pragma once

#include <string>
#include <vector>

namespace corvane::recorder {

enum class Health { Works, Doubtful, Fails };

struct Finding {
    std::string Step;
    Health Result = Health::Works;
    std::string Text;      // lines
    std::string Remedy{};  // what to do; empty: nothing
};

// The steps before the driver is loaded, up to the first that fails: its registration, its file, the vendor's
// libraries. setup/ or native/ is linked in.
std::vector<Finding> ExamineInstallation();

// All of them as one object of JSON.
std::string JsonOf(const std::vector<Finding>& findings, bool works);

}  // namespace corvane::recorder
