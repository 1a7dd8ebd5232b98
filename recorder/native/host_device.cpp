#include "recorder/host_device.h"

#include <corvane_version.h>
#include "driver/driver_object.h"
#include "driver/lifecycle.h"

namespace corvane::recorder {

struct HostDevice::Driver {
    DriverObject Object;
};

HostDevice::HostDevice() : Driver_(std::make_unique<Driver>()) {}
HostDevice::~HostDevice() = default;

std::string HostDevice::ADCName() const {
    return Driver_->Object.ADCName();
}
int HostDevice::Resolution() const {
    return Driver_->Object.Resolution();
}
int16_t HostDevice::ChannelsCount() const {
    return Driver_->Object.ChannelsCount();
}
float HostDevice::RateMax() const {
    return Driver_->Object.RateMax();
}
std::vector<std::string> HostDevice::Ranges() const {
    return Driver_->Object.Ranges();
}
bool HostDevice::Test() {
    return Driver_->Object.Test();
}
bool HostDevice::Busy() const {
    return Driver_->Object.Busy();
}
std::string HostDevice::ChannelName(int16_t index) const {
    return Driver_->Object.ChannelName(index);
}
int16_t HostDevice::ChannelRange(int16_t index) const {
    return Driver_->Object.ChannelRange(index);
}
float HostDevice::ChannelUnitScale(int16_t index) const {
    return Driver_->Object.ChannelUnitScale(index);
}
float HostDevice::ChannelUnitOffset(int16_t index) const {
    return Driver_->Object.ChannelUnitOffset(index);
}
std::string HostDevice::ChannelUnitName(int16_t index) const {
    return Driver_->Object.ChannelUnitName(index);
}
float HostDevice::Rate() {
    return Driver_->Object.Rate();
}
void HostDevice::SetRate(float rate) {
    Driver_->Object.SetRate(rate);
}
void HostDevice::SetInputSizeData(int32_t size) {
    Driver_->Object.SetInputSizeData(size);
}
int32_t HostDevice::InputSizeKadrs() const {
    return Driver_->Object.InputSizeKadrs();
}
int32_t HostDevice::InputCountKadrs() const {
    return Driver_->Object.InputCountKadrs();
}
std::vector<int16_t> HostDevice::InputChannels() const {
    return Driver_->Object.InputChannels();
}
void HostDevice::SetInputChannels(std::span<const int16_t> table) {
    Driver_->Object.SetInputChannels(table);
}
bool HostDevice::StartRecord() {
    return Driver_->Object.StartRecord();
}
void HostDevice::StopRecord() {
    Driver_->Object.StopRecord();
}

int32_t HostDevice::GetData(std::span<int16_t> samples) {
    auto count = static_cast<int32_t>(samples.size());
    int32_t remaining = 0;
    return Driver_->Object.GetData(samples.data(), count, remaining);
}

std::string HostDevice::LastError() const {
    return Driver_->Object.LastError();
}

bool HostDevice::HasDialogs() {
    return false;
}
void HostDevice::ShowSetting() {
    Driver_->Object.ShowSetting();
}

void HostDevice::SetInteractive(bool interactive) {
    Driver_->Object.SetInteractive(interactive);
}
bool HostDevice::SetServer(const std::string& address) {
    return Driver_->Object.SetServer(address);
}
void HostDevice::SetCrateSerial(const std::string& serial) {
    Driver_->Object.SetCrateSerial(serial);
}
std::string HostDevice::CrateInfo() const {
    return Driver_->Object.CrateInfo();
}
int16_t HostDevice::ModulesCount() const {
    return Driver_->Object.ModulesCount();
}
std::string HostDevice::ModuleInfo(int16_t index) const {
    return Driver_->Object.ModuleInfo(index);
}
int64_t HostDevice::KadrsRecorded() const {
    return Driver_->Object.KadrsRecorded();
}
int64_t HostDevice::KadrsRead() const {
    return Driver_->Object.KadrsRead();
}
std::vector<Gap> HostDevice::Gaps() const {
    return Driver_->Object.Gaps();
}

// The simulator is linked in.
std::vector<Library> HostDevice::Libraries() const {
    return {{"Corvane, native build", CORVANE_VERSION, "", false},
            {"ltrapi", CORVANE_VERSION, "", true},
            {"ltr27api", CORVANE_VERSION, "", true}};
}

int HostDevice::StartMarkMode() const {
    DriverState& state = AttachObject();
    const int mode = state.Crate.MarkSTARTMode;
    DetachObject(state);
    return mode;
}

bool HostDevice::ReadsModuleTexts() {
    return true;
}

}  // namespace corvane::recorder
