// The only caller of ltrapi.dll: asks an LTR server for its crates and a crate for its START mark. Every operation
// opens a connection of its own and closes it again. One thread at a time.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "hardware/vendor_records.h"

namespace corvane {

// One crate that answered in the last GetCrates.
struct CrateEntry {
    uint32_t NetAddr = 0;
    char Serial[VendorTextSize] = {};
    int32_t Type = 0;       // crate type code; 0: the crate did not report it
    int32_t Interface = 0;  // 2: Ethernet
    uint16_t ModuleIds[CrateSlots] = {};
};

class TLTRAPI {
public:
    TLTRAPI() = default;
    ~TLTRAPI();
    TLTRAPI(const TLTRAPI&) = delete;
    TLTRAPI& operator=(const TLTRAPI&) = delete;

    static std::string LibraryName();
    static bool LibraryPresent();  // always: the library is bound when the component is loaded

    // Replaces the crate list by the crates of the server. Crates that can't be opened are left out. Returns the number
    // of crates (0 to 16), or, with an empty list, the vendor's code for the step that failed; the known codes are
    // negative.
    int32_t GetCrates(uint32_t netAddr);

    // Asks the crate to make its START mark or to wait for one; mode 1 to 8 as in the setup dialog, counted from 1.
    // timeMark: the crate's time mark before that; it is set once the crate is reached, even when the result is false.
    // A serial of more than 16 ANSI characters names no crate and is refused.
    bool MakeStartMark(uint32_t netAddr, const std::string& crateSN, int32_t mode, uint32_t& timeMark);

    // Positions count from 0; outside the list or the 16 slots the answers are empty texts and 0.
    std::string CrateSerial(int32_t index) const;
    std::string CrateTypeText(int32_t index) const;
    std::string CrateInterfaceText(int32_t index) const;
    uint16_t ModuleId(int32_t index, int32_t slot) const;
    std::string ModuleTypeText(int32_t index, int32_t slot) const;

    int32_t LastError() const { return LastError_; }
    std::string GetErrorString() const;  // text of LastError

    static std::string CrateTypeName(int32_t type);
    static std::string ModuleTypeName(uint16_t id);
    static std::string InterfaceName(int32_t interfaceCode);

private:
    bool Connect(uint32_t netAddr, const char (&serial)[VendorTextSize]);
    int32_t ReadCrate(uint32_t netAddr, const uint8_t (&serial)[VendorTextSize]);
    bool RequestMark(int32_t mode);
    const CrateEntry* Entry(int32_t index) const;

    CrateConnection Connection_ = {};
    std::vector<CrateEntry> Crates_;
    int32_t LastError_ = 0;  // of the last LTR_Init, LTR_Open or LTR_GetCrates
};

}  // namespace corvane
