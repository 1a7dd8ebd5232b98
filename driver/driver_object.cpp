#include "driver/driver_object.h"

#include <algorithm>

#include "base/dotted_address.h"
#include "driver/driver_state.h"
#include "driver/lifecycle.h"
#include "engine/device.h"
#include "engine/rate.h"
#include "engine/recording.h"
#include "engine/single_reading.h"
#include "selection/address_file.h"
#include "settings/dlgSetup.h"

namespace corvane {

namespace {

// While a member shows a dialog, the timers of the host keep running on the same thread and may call the driver again.
// A call that would show a second dialog does nothing then.
class ReentryGuard {
public:
    explicit ReentryGuard(bool& inside) : Inside_(inside), Entered_(!inside) { Inside_ = true; }
    ~ReentryGuard() {
        if (Entered_) Inside_ = false;
    }
    ReentryGuard(const ReentryGuard&) = delete;
    ReentryGuard& operator=(const ReentryGuard&) = delete;

    bool Entered() const { return Entered_; }

private:
    bool& Inside_;
    bool Entered_;
};

}  // namespace

DriverObject::DriverObject() : State_(AttachObject()) {}

DriverObject::~DriverObject() {
    DetachObject(State_);
}

std::string DriverObject::ADCName() const {
    return State_.Device.ADCName;
}

uint8_t DriverObject::Resolution() const {
    return State_.Device.Resolution;
}

int16_t DriverObject::ChannelsCount() const {
    return State_.Device.ChannelsCount;
}

float DriverObject::RateMax() const {
    return State_.Input.RateMax;
}

std::vector<std::string> DriverObject::Ranges() const {
    return State_.Device.Ranges;
}

bool DriverObject::Detected() const {
    return State_.Detected;
}

bool DriverObject::Test() {
    const ReentryGuard guard(State_.InDialog);
    if (!State_.Detected && guard.Entered()) {
        State_.LastOpenResult = 0;
        State_.Detected = OpenDevice(State_.Device, State_.Input, State_.Engine, State_.Crate, State_.Search);
        State_.LastOpenResult = State_.Detected ? int16_t{-1} : int16_t{0};
    }
    return State_.Detected;
}

int16_t DriverObject::BasePort() const {
    return State_.LastOpenResult;
}

bool DriverObject::Busy() const {
    return State_.Engine.Busy;
}

std::string DriverObject::ChannelName(int16_t index) const {
    const DeviceInfo& device = State_.Device;
    return device.ValidChannel(index) ? device.ChannelNames[static_cast<size_t>(index)] : std::string();
}

int16_t DriverObject::ChannelRange(int16_t index) const {
    const DeviceInfo& device = State_.Device;
    return device.ValidChannel(index) ? device.ChannelRanges[static_cast<size_t>(index)] : int16_t{0};
}

// The range can't be chosen: it is that of the mezzanine that the channel belongs to.
void DriverObject::SetChannelRange(int16_t, int16_t) {}

float DriverObject::ChannelUnitScale(int16_t index) const {
    const DeviceInfo& device = State_.Device;
    return device.ValidChannel(index) ? device.UnitScales[device.RangeOf(index)] : 0;
}

float DriverObject::ChannelUnitOffset(int16_t index) const {
    const DeviceInfo& device = State_.Device;
    return device.ValidChannel(index) ? device.UnitOffsets[device.RangeOf(index)] : 0;
}

std::string DriverObject::ChannelUnitName(int16_t index) const {
    const DeviceInfo& device = State_.Device;
    return device.ValidChannel(index) ? device.UnitNames[device.RangeOf(index)] : std::string();
}

float DriverObject::Rate() {
    return ApplyRate(State_.Input, State_.Engine, State_.Input.Rate);
}

void DriverObject::SetRate(float rate) {
    if (!State_.Engine.Busy) ApplyRate(State_.Input, State_.Engine, rate);
}

void DriverObject::SetInputSizeData(int32_t newSize) {
    State_.Input.RequestedSize = newSize;
    SetInputSize(State_.Input, true, 0);
}

int32_t DriverObject::InputSizeData() const {
    return State_.Input.InputSizeData;
}

int32_t DriverObject::InputCountData() const {
    return CountUnreadData(State_.Input);
}

int32_t DriverObject::InputSizeKadrs() const {
    return State_.Input.InputSizeKadrs;
}

int32_t DriverObject::InputCountKadrs() const {
    return State_.Input.Ring.CountUnreadKadrs();
}

int16_t DriverObject::InputCountChannels() const {
    return State_.Input.InputCountChannels();
}

std::vector<int16_t> DriverObject::InputChannels() const {
    return State_.Input.ChTable;
}

void DriverObject::SetInputChannels(std::span<const int16_t> table) {
    if (State_.Engine.Busy) return;
    std::vector<int16_t> normalized(table.begin(), table.end());
    NormalizeChannelTable(normalized, State_.Device.ChannelsCount);
    State_.Input.ChTable = std::move(normalized);
}

int16_t DriverObject::GetChannel(int16_t index) {
    return ReadChannelNow(State_.Engine, index);
}

std::vector<int16_t> DriverObject::GetKadr() {
    return ReadKadrNow(State_.Engine, State_.Input);
}

bool DriverObject::StartRecord() {
    return !State_.Engine.Busy && State_.Detected &&
           StartRecording(State_.Engine, State_.Input, State_.Crate, State_.Device.LastError);
}

void DriverObject::StopRecord() {
    StopRecording(State_.Engine);
}

InputDataShape DriverObject::NextInputData() const {
    const InputState& input = State_.Input;
    const int32_t unread = input.Ring.CountUnreadKadrs();
    const auto channels = unread > 0 ? input.Ring.Channels() : input.InputCountChannels();
    return {static_cast<int16_t>(channels), unread};
}

void DriverObject::TakeInputData(const InputDataShape& shape, int16_t* destination) {
    InputState& input = State_.Input;
    const std::vector<int16_t>& table = shape.Kadrs > 0 ? input.RecordedTable : input.ChTable;
    destination = std::copy(table.begin(), table.end(), destination);
    input.Ring.Read(destination, shape.Kadrs);
}

int32_t DriverObject::GetData(int16_t* data, int32_t& count, int32_t& remaining) {
    return corvane::GetData(State_.Input, data, count, remaining);
}

std::string DriverObject::LastError() const {
    return State_.Device.LastError;
}

bool DriverObject::ShowSetting() {
    const ReentryGuard guard(State_.InDialog);
    return guard.Entered() && State_.Search.Interactive &&
           corvane::ShowSetting(State_.Device, State_.Engine, State_.Crate, State_.HelpFile);
}

bool DriverObject::Interactive() const {
    return State_.Search.Interactive;
}

void DriverObject::SetInteractive(bool interactive) {
    State_.Search.Interactive = interactive;
}

std::string DriverObject::Server() const {
    return State_.Search.Server != 0 ? DottedText(State_.Search.Server) : std::string();
}

bool DriverObject::SetServer(const std::string& address) {
    const uint32_t server = std::ranges::count(address, '.') == 3 ? ParseIP(address) : 0;
    if (server == 0 && !address.empty()) return false;
    State_.Search.Server = server;
    return true;
}

std::string DriverObject::CrateSerial() const {
    return State_.Search.CrateSerial;
}

void DriverObject::SetCrateSerial(const std::string& serial) {
    State_.Search.CrateSerial = serial;
}

std::string DriverObject::CrateInfo() const {
    return State_.Detected ? State_.Crate.Info : std::string();
}

int16_t DriverObject::ModulesCount() const {
    return State_.Detected ? State_.Engine.OpenedCount : int16_t{0};
}

std::string DriverObject::ModuleInfo(int16_t index) const {
    if (index < 0 || index >= ModulesCount()) return {};
    return State_.Engine.Modules[static_cast<size_t>(index)].Info;
}

int64_t DriverObject::KadrsRecorded() const {
    return State_.Input.Ring.KadrsRecorded();
}

int64_t DriverObject::KadrsRead() const {
    return State_.Input.Ring.KadrsRead();
}

std::vector<Gap> DriverObject::Gaps() const {
    return State_.Input.Gaps.Gaps();
}

}  // namespace corvane
