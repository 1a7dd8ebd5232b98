// What the vendor's module record says of a simulated module: its description and the configuration it starts with.
#pragma once

#include <optional>

#include "hardware/vendor_records.h"
#include "simulator/scenario.h"

namespace ltrsim {

void DescribeModule(const Module& module, corvane::TLTR27& record);

// All zero when no mezzanine is fitted.
corvane::MezzanineDescription Describe(const std::optional<Mezzanine>& mezzanine);

// Of a module that nobody has configured yet: the mezzanine's unit and scale, and a calibration that changes nothing.
corvane::MezzanineConfig InitialConfig(const std::optional<Mezzanine>& mezzanine);

}  // namespace ltrsim
