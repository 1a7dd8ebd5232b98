// The driver as a host uses it. Linked in one of two forms: com/ goes through the registered component as any host
// does, native/ calls the driver's own object directly. Texts are UTF-8. Every member belongs to the thread that
// made the device; destroying it ends a recording and closes the crate. A driver that can't be loaded, or that answers
// with an error where it never should, throws Failure with ExitCode::NoDriver.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "driver/model/gap.h"

namespace corvane::recorder {

// One of the files that make up the driver.
struct Library {
    std::string Name;
    std::string Version;     // empty: unknown
    std::string File;        // full path; empty: unknown, or a part of this program
    bool Simulated = false;  // no real one of the vendor
};

class HostDevice {
public:
    HostDevice();
    ~HostDevice();
    HostDevice(const HostDevice&) = delete;
    HostDevice& operator=(const HostDevice&) = delete;

    std::string ADCName() const;
    int Resolution() const;  // bits
    int16_t ChannelsCount() const;
    float RateMax() const;  // Hz
    std::vector<std::string> Ranges() const;
    bool Test();  // opens the crate; false: see LastError
    bool Busy() const;
    std::string ChannelName(int16_t index) const;
    int16_t ChannelRange(int16_t index) const;     // index into Ranges
    float ChannelUnitScale(int16_t index) const;   // samples per unit
    float ChannelUnitOffset(int16_t index) const;  // unit value of sample 0
    std::string ChannelUnitName(int16_t index) const;
    float Rate();                         // Hz, the effective one
    void SetRate(float rate);             // Hz
    void SetInputSizeData(int32_t size);  // the ring's length; counts in kadrs once a recording starts
    int32_t InputSizeKadrs() const;
    int32_t InputCountKadrs() const;
    std::vector<int16_t> InputChannels() const;
    void SetInputChannels(std::span<const int16_t> table);
    bool StartRecord();  // false: see LastError
    void StopRecord();
    // Copies the unread kadrs that fit whole into `samples`, one after another. Returns their number.
    int32_t GetData(std::span<int16_t> samples);
    std::string LastError() const;
    static bool HasDialogs();  // whether the driver can show any in this form
    void ShowSetting();        // the setup dialog, until the user has closed it

    void SetInteractive(bool interactive);           // false: no member shows a window, or asks anybody
    bool SetServer(const std::string& address);      // for the next Test; empty: the usual search; false: no address
    void SetCrateSerial(const std::string& serial);  // for the next Test; empty: the only crate, or the user's choice
    std::string CrateInfo() const;                   // the opened crate, described in lines; empty: none
    int16_t ModulesCount() const;                    // opened modules, 0 to 2
    std::string ModuleInfo(int16_t index) const;     // an opened module, described in lines
    int64_t KadrsRecorded() const;                   // since the last StartRecord
    int64_t KadrsRead() const;                       // of these; the number of the first kadr that GetData gives next
    // All kadrs since the last StartRecord that were not measured; of each kadr that can be read, it is known here.
    std::vector<Gap> Gaps() const;

    std::vector<Library> Libraries() const;  // the driver, then the vendor's
    int StartMarkMode() const;               // 0 to 7: in the order of the setup dialog's list
    static bool ReadsModuleTexts();          // false: the system takes the modules' texts for another language's

private:
    struct Driver;
    std::unique_ptr<Driver> Driver_;
};

}  // namespace corvane::recorder
