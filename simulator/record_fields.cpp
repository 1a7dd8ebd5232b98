#include "simulator/record_fields.h"

#include <algorithm>
#include <cstring>
#include <string>

namespace ltrsim {

namespace {

// A text as long as the field fills it to the last byte, without a closing zero.
void SetText(char (&field)[corvane::VendorTextSize], const std::string& text) {
    std::memset(field, 0, sizeof(field));
    std::memcpy(field, text.data(), std::min(text.size(), sizeof(field)));
}

}  // namespace

void DescribeModule(const Module& module, corvane::TLTR27& record) {
    SetText(record.ModuleName, "LTR27");
    SetText(record.SerialNumber, module.Serial);
    record.Revision = module.Revision;
    SetText(record.ProcessorName, module.Processor);
    record.ClockRate = module.ClockRate;
    record.FirmwareVersion = module.Firmware;
}

corvane::MezzanineDescription Describe(const std::optional<Mezzanine>& mezzanine) {
    corvane::MezzanineDescription description = {};
    if (!mezzanine) return description;
    description.Active = 1;
    SetText(description.Name, mezzanine->Name);
    SetText(description.Serial, mezzanine->Serial);
    description.Revision = mezzanine->Revision;
    for (size_t channel = 0; channel < MezzanineChannels; channel++) {
        description.Calibration[2 * channel] = mezzanine->Factory[channel].Offset;
        description.Calibration[2 * channel + 1] = mezzanine->Factory[channel].Scale;
    }
    return description;
}

corvane::MezzanineConfig InitialConfig(const std::optional<Mezzanine>& mezzanine) {
    corvane::MezzanineConfig config = {{}, {}, 0, 0, {0, 1, 0, 1}};
    if (!mezzanine) return config;
    SetText(config.Unit, mezzanine->Unit);
    config.Scale = (mezzanine->Top - mezzanine->Bottom) / CodeSpan;
    config.Offset = mezzanine->Bottom;
    return config;
}

}  // namespace ltrsim
