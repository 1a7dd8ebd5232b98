// Scenario files of any content: refused with a line and a reason, or an installation within all bounds.
#include <cmath>
#include <set>

#include "fuzz/fuzz_input.h"
#include "simulator/scenario.h"
#include "simulator/scenario_error.h"
#include "simulator/signal.h"

namespace corvane {
namespace {

void RequireModule(const ltrsim::Module& module) {
    Require(module.Slot >= 1 && module.Slot <= CrateSlots && module.Id != 0, "a module in a slot");
    const ltrsim::ModuleSource source(module);
    uint32_t words[2 * ModuleChannels];
    source.FillKadrs(4095, 2, 1000, words);
    for (size_t channel = 0; channel < ModuleChannels; channel++) {
        Require((words[channel] & 0xFFFF) == 0xFFF0 + channel, "kadr and channel in each word");
        const double code = source.Code(channel, 1234567, 1000);
        const bool fitted = module.Mezzanines[channel / 2].has_value();
        Require(fitted ? code >= 0 && code <= ltrsim::LargestCode : std::isnan(code), "a code in range");
    }
}

void RequireScenario(const ltrsim::Scenario& scenario) {
    Require(scenario.Speed >= 0 && scenario.Speed <= 1000, "a speed");
    std::set<uint32_t> addresses;
    for (const ltrsim::Server& server : scenario.Servers) {
        Require(addresses.insert(server.Address).second && server.Crates.size() <= MaxCrates, "a server");
        std::set<std::string> serials;
        std::set<int> positions;
        for (const ltrsim::Crate& crate : server.Crates) {
            Require(serials.insert(crate.Serial).second && crate.Serial.size() <= VendorTextSize, "a serial");
            Require(positions.insert(crate.ListPosition).second, "a place of its own");
            Require(crate.ListPosition >= 0 && crate.ListPosition < MaxCrates, "a place in the list");
            std::set<uint32_t> slots;
            for (const ltrsim::Module& module : crate.Modules) {
                Require(slots.insert(module.Slot).second, "a slot of its own");
                RequireModule(module);
            }
        }
    }
    for (const ltrsim::Fault& fault : scenario.Faults) {
        Require(fault.After >= 0 && fault.Times.value_or(1) > 0, "a fault that acts");
        Require(fault.Kind != ltrsim::FaultKind::Delay || (fault.Number >= 0 && fault.Number <= 1e6), "a delay");
    }
}

template <class Read>
void ReadOrRefuse(Read read) {
    try {
        read();
    } catch (const ltrsim::ScenarioError& error) {
        const std::string_view reason = error.what();
        RequireText(reason, AnyControl, "a reason in UTF-8");
        Require(reason.starts_with("fuzz:") && reason.find(": ", 5) != reason.npos, "file, line and reason");
        Require(reason[5] >= '0' && reason[5] <= '9', "a line");
    }
}

}  // namespace
}  // namespace corvane

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace corvane;
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    ReadOrRefuse([&] { RequireScenario(ltrsim::ReadScenario(text, "fuzz")); });
    ReadOrRefuse([&] { RequireScenario({1, {}, {ltrsim::ReadFault(text, "fuzz")}}); });
    return 0;
}
