// What the doctor finds at one step.
#pragma once

#include <string>
#include <vector>

#include "recorder/messages.h"

namespace corvane::recorder {

enum class Health { Works, Doubtful, Fails };

struct Finding {
    Text Step;
    Health Result = Health::Works;
    std::string Words;     // lines, in the user's language
    std::string Remedy{};  // what to do; empty: nothing
};

// The steps before the driver is loaded, up to the first that fails: its registration, its file, the vendor's
// libraries. setup/ or native/ is linked in.
std::vector<Finding> ExamineInstallation();

// All of them as one object of JSON: the steps and results in English, what is for people in their language.
std::string JsonOf(const std::vector<Finding>& findings, bool works);

}  // namespace corvane::recorder
