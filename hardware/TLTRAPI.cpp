#include "hardware/TLTRAPI.h"

#include <algorithm>
#include <cstring>

#include "hardware/vendor_imports.h"
#include "hardware/vendor_text.h"
#include "platform/ansi_text.h"
#include "platform/event_log.h"

namespace corvane {

namespace {

struct NamedCode {
    int32_t Code;
    const char* Name;
};

constexpr int32_t CrateLTR010 = 10;
constexpr int32_t CrateLTR021 = 21;

constexpr NamedCode CrateTypes[] = {
    {CrateLTR010, "LTR010"}, {CrateLTR021, "LTR021"}, {30, "LTR030"}, {31, "LTR031"}, {32, "LTR032"}};

// A module's identifier repeats its number in both bytes.
constexpr NamedCode ModuleTypes[] = {{0x0000, "<empty>"}, {0x0B0B, "LTR11"}, {0x1515, "LTR21"}, {0x1616, "LTR22"},
                                     {0x1818, "LTR24"},   {0x1B1B, "LTR27"}, {0x2222, "LTR34"}, {0x2929, "LTR41"},
                                     {0x2A2A, "LTR42"},   {0x2B2B, "LTR43"}, {0x3333, "LTR51"}, {0x7272, "LTR114"},
                                     {0xD2D2, "LTR210"},  {0xD4D4, "LTR212"}};

template <size_t Count>
const char* FindName(const NamedCode (&table)[Count], int32_t code) {
    for (const NamedCode& entry : table) {
        if (entry.Code == code) return entry.Name;
    }
    return nullptr;
}

}  // namespace

TLTRAPI::~TLTRAPI() {
    LTR_Close(&Connection_);
}

std::string TLTRAPI::LibraryName() {
    return "ltrapi.dll";
}

bool TLTRAPI::LibraryPresent() {
    return true;
}

// Closes the connection and opens another one. An all-zero serial addresses the server itself.
bool TLTRAPI::Connect(uint32_t netAddr, const char (&serial)[VendorTextSize]) {
    LTR_Close(&Connection_);
    Connection_ = {};
    LastError_ = LTR_Init(&Connection_);
    if (LastError_ != 0) return false;
    Connection_.ServerAddress = netAddr;
    Connection_.Channel = 0;
    std::memcpy(Connection_.CrateSerial, serial, sizeof serial);
    LastError_ = LTR_Open(&Connection_);
    return LastError_ == 0;
}

int32_t TLTRAPI::GetCrates(uint32_t netAddr) {
    Crates_.clear();
    uint8_t serials[MaxCrates][VendorTextSize] = {};
    if (Connect(netAddr, {})) LastError_ = LTR_GetCrates(&Connection_, serials);
    LTR_Close(&Connection_);
    if (LastError_ != 0) return LastError_;
    int32_t count = 0;
    for (const auto& serial : serials) count += ReadCrate(netAddr, serial);
    return count;
}

int32_t TLTRAPI::ReadCrate(uint32_t netAddr, const uint8_t (&serial)[VendorTextSize]) {
    constexpr uint8_t FirstPrintable = 32;
    if (serial[0] < FirstPrintable) return 0;
    CrateEntry entry;
    entry.NetAddr = netAddr;
    std::memcpy(entry.Serial, serial, sizeof serial);
    if (!Connect(netAddr, entry.Serial)) {
        platform::LogEvent([&] { return "crate " + BytesToText(entry.Serial) + " is left out. " + GetErrorString(); });
        return 0;
    }
    CrateInfoRecord info = {};
    if (LTR_GetCrateInfo(&Connection_, &info) == 0) {
        entry.Type = info.Type;
        entry.Interface = info.Interface;
    }
    LTR_GetCrateModules(&Connection_, entry.ModuleIds);
    LTR_Close(&Connection_);
    Crates_.push_back(entry);
    return 1;
}

bool TLTRAPI::MakeStartMark(uint32_t netAddr, const std::string& crateSN, int32_t mode, uint32_t& timeMark) {
    const std::string ansi = platform::ToAnsi(crateSN);
    char serial[VendorTextSize] = {};
    if (ansi.size() > sizeof serial) return false;
    std::copy(ansi.begin(), ansi.end(), serial);
    if (!Connect(netAddr, serial)) return false;
    timeMark = Connection_.TimeMark;
    const bool made = RequestMark(mode);
    LTR_Close(&Connection_);
    return made;
}

bool TLTRAPI::RequestMark(int32_t mode) {
    constexpr uint16_t StartMarkSource = 6;  // DIGOUT carries the START mark
    constexpr uint16_t OutputsOn = 0xFFFF;
    constexpr int32_t MakeInternal = 5;
    CrateInfoRecord info = {};
    if (LTR_GetCrateInfo(&Connection_, &info) != 0 || info.Type == CrateLTR010 || info.Type == CrateLTR021) {
        return false;
    }
    CrateConfig config = {};
    if (mode == 2 || mode == 3) {
        config.DigitalOutput[mode - 2] = StartMarkSource;
        config.DigitalOutputEnabled = OutputsOn;
    }
    int32_t markMode = 0;
    if (mode >= 1 && mode <= 3) markMode = MakeInternal;
    if (mode >= 5 && mode <= 8) markMode = mode - 4;
    return LTR_Config(&Connection_, &config) == 0 && LTR_MakeStartMark(&Connection_, markMode) == 0;
}

const CrateEntry* TLTRAPI::Entry(int32_t index) const {
    return index >= 0 && static_cast<size_t>(index) < Crates_.size() ? &Crates_[static_cast<size_t>(index)] : nullptr;
}

std::string TLTRAPI::CrateSerial(int32_t index) const {
    const CrateEntry* entry = Entry(index);
    return entry ? BytesToText(entry->Serial) : std::string();
}

std::string TLTRAPI::CrateTypeText(int32_t index) const {
    const CrateEntry* entry = Entry(index);
    return entry ? CrateTypeName(entry->Type) : std::string();
}

std::string TLTRAPI::CrateInterfaceText(int32_t index) const {
    const CrateEntry* entry = Entry(index);
    return entry ? InterfaceName(entry->Interface) : std::string();
}

uint16_t TLTRAPI::ModuleId(int32_t index, int32_t slot) const {
    const CrateEntry* entry = Entry(index);
    return entry && slot >= 0 && slot < CrateSlots ? entry->ModuleIds[slot] : uint16_t{0};
}

std::string TLTRAPI::ModuleTypeText(int32_t index, int32_t slot) const {
    return Entry(index) && slot >= 0 && slot < CrateSlots ? ModuleTypeName(ModuleId(index, slot)) : std::string();
}

std::string TLTRAPI::GetErrorString() const {
    return VendorErrorText(LastError_, LTR_GetErrorString(LastError_));
}

std::string TLTRAPI::CrateTypeName(int32_t type) {
    const char* name = FindName(CrateTypes, type);
    return name ? name : "LTR0??";
}

std::string TLTRAPI::ModuleTypeName(uint16_t id) {
    const char* name = FindName(ModuleTypes, id);
    return name ? name : "LTR" + std::to_string(id & 0xFF);
}

std::string TLTRAPI::InterfaceName(int32_t interfaceCode) {
    constexpr int32_t Ethernet = 2;
    return interfaceCode == Ethernet ? "Ethernet" : "USB";
}

}  // namespace corvane
