#include "recorder/finding.h"

#include <nlohmann/json.hpp>

namespace corvane::recorder {

std::string JsonOf(const std::vector<Finding>& findings, bool works) {
    static constexpr const char* Results[] = {"works", "doubtful", "fails"};
    nlohmann::ordered_json steps = nlohmann::ordered_json::array();
    for (const Finding& each : findings) {
        steps.push_back({{"step", each.Step.In(Language::English)},
                         {"result", Results[static_cast<int>(each.Result)]},
                         {"text", each.Words},
                         {"remedy", each.Remedy}});
    }
    const nlohmann::ordered_json report = {{"works", works}, {"steps", steps}};
    return report.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace);
}

}  // namespace corvane::recorder
