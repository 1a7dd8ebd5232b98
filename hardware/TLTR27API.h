// The only caller of ltr27api.dll. It keeps nothing of a module: every operation works on the caller's record. The
// recording thread calls RecvWithMarks, ProcessData and, at its end, ADCStop; the host's thread calls all of it.
// Whoever owns a record makes sure that it is never in two calls at the same time.
#pragma once

#include <atomic>
#include <cstdint>
#include <string>

#include "hardware/vendor_records.h"

namespace corvane {

class TLTR27API {
public:
    // The two flags of ProcessData for calibrated codes: apply the calibration, don't convert to physical units.
    static constexpr int32_t Calibrate = 1;
    static constexpr int32_t KeepCodes = 0;

    static std::string LibraryName();
    static bool LibraryPresent();  // always: the library is bound when the component is loaded

    // Opens the module in the 1-based `slot` of the crate with this serial number on the server; whatever was open in
    // the record is closed first. On failure the record is left closed and zero-filled.
    bool Open(TLTR27& record, uint32_t netAddr, const std::string& crateSN, uint32_t slot);
    void Close(TLTR27& record);  // zero-fills the record; LastError stays
    bool GetConfig(TLTR27& record);
    bool SetConfig(TLTR27& record);
    bool GetDescription(TLTR27& record, uint32_t flags);
    bool ADCStart(TLTR27& record);
    bool ADCStop(TLTR27& record);

    // Words received (0 to size), or a negative vendor code. timeout in ms.
    int32_t Recv(TLTR27& record, uint32_t* data, uint32_t size, uint32_t timeout);
    int32_t RecvWithMarks(TLTR27& record, uint32_t* data, uint32_t* tMarks, uint32_t size, uint32_t timeout);
    // Turns words into values. size: in: words of `source`, out: values in `destination`.
    bool ProcessData(TLTR27& record, const uint32_t* source, double* destination, uint32_t& size, int32_t flag1,
                     int32_t flag2);

    int32_t LastError() const { return LastError_; }
    std::string GetErrorString() const;  // text of LastError

    static std::string ModuleName(const TLTR27& record);
    static std::string SerialNumber(const TLTR27& record);
    static std::string Revision(const TLTR27& record);
    static std::string ProcessorName(const TLTR27& record);
    static int32_t ClockRate(const TLTR27& record);
    static std::string FirmwareVersion(const TLTR27& record);

private:
    bool SetLastError(int32_t result);

    // Result of the last vendor call on any thread.
    std::atomic<int32_t> LastError_ = 0;
};

}  // namespace corvane
