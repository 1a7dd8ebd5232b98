// What the host sees of the driver, in C++ types: the members of IADC3 in slot order, then those of ICorvaneStatus. An
// object holds nothing of its own; all objects of one host thread share that thread's state, which the first makes and
// the last closes. Call every member on the thread that made the object. Texts are UTF-8. Members report failure
// through results and LastError; only running out of memory is thrown (std::bad_alloc).
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "driver/model/gap.h"

namespace corvane {

struct DriverState;

// Size of the next InputData result.
struct InputDataShape {
    int16_t Channels = 0;  // samples of one kadr
    int32_t Kadrs = 0;     // unread kadrs; the result has one more in front, which holds the channel numbers
};

class DriverObject {
public:
    DriverObject();
    ~DriverObject();
    DriverObject(const DriverObject&) = delete;
    DriverObject& operator=(const DriverObject&) = delete;

    std::string ADCName() const;
    uint8_t Resolution() const;
    int16_t ChannelsCount() const;
    float RateMax() const;  // Hz
    std::vector<std::string> Ranges() const;
    bool Detected() const;
    bool Test();
    int16_t BasePort() const;
    bool Busy() const;
    std::string ChannelName(int16_t index) const;
    int16_t ChannelRange(int16_t index) const;
    void SetChannelRange(int16_t index, int16_t rangeIndex);
    float ChannelUnitScale(int16_t index) const;   // samples per unit
    float ChannelUnitOffset(int16_t index) const;  // unit value of sample 0
    std::string ChannelUnitName(int16_t index) const;
    float Rate();  // Hz
    void SetRate(float rate);
    void SetInputSizeData(int32_t newSize);  // samples
    int32_t InputSizeData() const;           // samples
    int32_t InputCountData() const;          // samples
    int32_t InputSizeKadrs() const;
    int32_t InputCountKadrs() const;
    int16_t InputCountChannels() const;
    std::vector<int16_t> InputChannels() const;
    void SetInputChannels(std::span<const int16_t> table);
    int16_t GetChannel(int16_t index);
    std::vector<int16_t> GetKadr();
    bool StartRecord();
    void StopRecord();

    // InputData in two steps, so that the caller owns the memory: ask for the shape, then have exactly that much copied
    // to `destination`, which has room for (Kadrs + 1) * Channels samples. The number of unread kadrs can only grow in
    // between.
    InputDataShape NextInputData() const;
    void TakeInputData(const InputDataShape& shape, int16_t* destination);

    // count: in: capacity of `data` in samples, out: samples copied. remaining: out: samples still unread. Returns
    // kadrs.
    int32_t GetData(int16_t* data, int32_t& count, int32_t& remaining);
    std::string LastError() const;
    bool ShowSetting();

    // ICorvaneStatus. Interactive, Server and CrateSerial are to be set before Test; they hold for all objects of the
    // thread.
    bool Interactive() const;
    void SetInteractive(bool interactive);       // false: no window is shown, as if the user cancelled each
    std::string Server() const;                  // dotted address, or empty
    bool SetServer(const std::string& address);  // empty: the usual search. False: no address; nothing changes
    std::string CrateSerial() const;
    void SetCrateSerial(const std::string& serial);  // empty: the only crate, or the user's choice
    std::string CrateInfo() const;                   // empty: none is open
    int16_t ModulesCount() const;                    // opened modules
    std::string ModuleInfo(int16_t index) const;     // empty: there is no such module
    int64_t KadrsRecorded() const;                   // since the last start of a recording
    int64_t KadrsRead() const;                       // of these, read by the host; the number of the next one
    std::vector<Gap> Gaps() const;                   // of the last recording, as far as it is stored

private:
    DriverState& State_;
};

}  // namespace corvane
