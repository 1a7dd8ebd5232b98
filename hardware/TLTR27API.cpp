#include "hardware/TLTR27API.h"

#include <cstring>

#include "base/dotted_address.h"
#include "base/rounding.h"
#include "hardware/vendor_imports.h"
#include "hardware/vendor_text.h"
#include "platform/ansi_text.h"

namespace corvane {

std::string TLTR27API::LibraryName() {
    return "ltr27api.dll";
}

bool TLTR27API::LibraryPresent() {
    return true;
}

bool TLTR27API::SetLastError(int32_t result) {
    LastError_ = result;
    return result == 0;
}

bool TLTR27API::Open(TLTR27& record, uint32_t netAddr, const std::string& crateSN, uint32_t slot) {
    constexpr uint32_t ModulePartOnly = 1;
    const std::string serial = platform::ToAnsi(crateSN);
    Close(record);
    record.Size = sizeof(TLTR27);
    if (SetLastError(LTR27_Init(&record)) &&
        SetLastError(LTR27_Open(&record, netAddr, ModulePort, serial.c_str(), slot)) &&
        SetLastError(LTR27_GetDescription(&record, ModulePartOnly))) {
        return true;
    }
    Close(record);
    return false;
}

void TLTR27API::Close(TLTR27& record) {
    LTR27_Close(&record);
    std::memset(&record, 0, sizeof record);
}

bool TLTR27API::GetConfig(TLTR27& record) {
    return SetLastError(LTR27_GetConfig(&record));
}

bool TLTR27API::SetConfig(TLTR27& record) {
    return SetLastError(LTR27_SetConfig(&record));
}

bool TLTR27API::GetDescription(TLTR27& record, uint32_t flags) {
    return SetLastError(LTR27_GetDescription(&record, flags));
}

bool TLTR27API::ADCStart(TLTR27& record) {
    return SetLastError(LTR27_ADCStart(&record));
}

bool TLTR27API::ADCStop(TLTR27& record) {
    return SetLastError(LTR27_ADCStop(&record));
}

int32_t TLTR27API::Recv(TLTR27& record, uint32_t* data, uint32_t size, uint32_t timeout) {
    return RecvWithMarks(record, data, nullptr, size, timeout);
}

int32_t TLTR27API::RecvWithMarks(TLTR27& record, uint32_t* data, uint32_t* tMarks, uint32_t size, uint32_t timeout) {
    const int32_t result = LTR27_Recv(&record, data, tMarks, size, timeout);
    LastError_ = result > 0 ? 0 : result;
    return result;
}

bool TLTR27API::ProcessData(TLTR27& record, const uint32_t* source, double* destination, uint32_t& size, int32_t flag1,
                            int32_t flag2) {
    const int32_t result = LTR27_ProcessData(&record, source, destination, &size, flag1, flag2);
    LastError_ = result;
    return result >= 0;
}

std::string TLTR27API::GetErrorString() const {
    const int32_t code = LastError_;
    return VendorErrorText(code, LTR27_GetErrorString(code));
}

std::string TLTR27API::ModuleName(const TLTR27& record) {
    return BytesToText(record.ModuleName);
}

std::string TLTR27API::SerialNumber(const TLTR27& record) {
    return BytesToText(record.SerialNumber);
}

std::string TLTR27API::Revision(const TLTR27& record) {
    return platform::FromAnsi(std::string_view(&record.Revision, 1));
}

std::string TLTR27API::ProcessorName(const TLTR27& record) {
    return BytesToText(record.ProcessorName);
}

int32_t TLTR27API::ClockRate(const TLTR27& record) {
    return RoundToInt32(record.ClockRate);
}

std::string TLTR27API::FirmwareVersion(const TLTR27& record) {
    return DottedText(record.FirmwareVersion);
}

}  // namespace corvane
