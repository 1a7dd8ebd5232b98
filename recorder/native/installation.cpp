#include "recorder/finding.h"

namespace corvane::recorder {

std::vector<Finding> ExamineInstallation() {
    return {
        {"Installation", Health::Works, Say("the driver and the simulated vendor libraries are part of this program")}};
}

}  // namespace corvane::recorder
