// The records that cross the border to the vendor libraries, laid out byte for byte as those libraries expect them:
// little-endian, packed. Only the named fields are ours to read or write; every Reserved byte belongs to the library.
#pragma once

#include <cstddef>
#include <cstdint>

namespace corvane {

constexpr int MezzaninePositions = 8;   // mezzanine positions of an LTR27
constexpr int ModuleChannels = 16;      // two per mezzanine position; also the words of one kadr
constexpr int CrateSlots = 16;          // slots of the largest LTR crate
constexpr int MaxCrates = 16;           // crates that one LTR server reports
constexpr int VendorTextSize = 16;      // bytes of every fixed text field but the one-character ones
constexpr uint32_t ModulePort = 11111;  // TCP port of the LTR server for module connections

#pragma pack(push, 1)

struct MezzanineConfig {
    uint8_t Reserved[16];
    char Unit[VendorTextSize];
    double Scale;           // unit per ADC code
    double Offset;          // unit value of ADC code 0
    double Calibration[4];  // what the library calibrates with
};

struct MezzanineDescription {
    uint8_t Active;  // nonzero when a mezzanine is fitted
    char Name[VendorTextSize];
    char Serial[VendorTextSize];
    char Revision;
    uint8_t Reserved1[2];
    double Calibration[4];  // as measured at the factory
    uint8_t Reserved2[256];
};

// Record of one LTR27 module. The library keeps its connection in it, so it must not move in memory while the module is
// open.
struct TLTR27 {
    uint32_t Size;
    uint8_t Reserved1[37];
    uint8_t FrequencyDivisor;  // d: the module samples at 1000 / (d + 1) Hz
    uint8_t Reserved2[2];
    MezzanineConfig Config[MezzaninePositions];
    uint8_t Reserved3[16];
    char ModuleName[VendorTextSize];
    char SerialNumber[VendorTextSize];
    char Revision;
    uint8_t Reserved4[260];
    char ProcessorName[VendorTextSize];
    uint8_t Reserved5[3];
    double ClockRate;
    uint32_t FirmwareVersion;  // four numbers of a byte each, the most significant first
    uint8_t Reserved6[256];
    MezzanineDescription Description[MezzaninePositions];
};

// Connection to the LTR server, or through it to one crate.
struct CrateConnection {
    uint32_t ServerAddress;  // the most significant byte is the first dotted component
    uint8_t Reserved1[2];
    char CrateSerial[VendorTextSize];  // all zero: the server itself
    uint16_t Channel;                  // 0: no module slot is addressed
    uint8_t Reserved2[4];
    uint32_t TimeMark;  // upper half counts START marks; valid after a successful LTR_Open
    uint8_t Reserved3[4];
};

struct CrateInfoRecord {
    uint8_t Type;
    uint8_t Interface;
    uint8_t Reserved[2];
};

struct CrateConfig {
    uint16_t Reserved[4];
    uint16_t DigitalOutput[2];      // sources of DIGOUT1 and DIGOUT2
    uint16_t DigitalOutputEnabled;  // 0xFFFF: the outputs are driven
};

#pragma pack(pop)

static_assert(sizeof(MezzanineConfig) == 80);
static_assert(sizeof(MezzanineDescription) == 324 && offsetof(MezzanineDescription, Calibration) == 36);
static_assert(sizeof(TLTR27) == 3872);
static_assert(offsetof(TLTR27, FrequencyDivisor) == 41);
static_assert(offsetof(TLTR27, Config) == 44);
static_assert(offsetof(MezzanineConfig, Unit) == 16 && offsetof(MezzanineConfig, Scale) == 32);
static_assert(offsetof(MezzanineConfig, Offset) == 40 && offsetof(MezzanineConfig, Calibration) == 48);
static_assert(offsetof(TLTR27, ModuleName) == 700 && offsetof(TLTR27, SerialNumber) == 716);
static_assert(offsetof(TLTR27, Revision) == 732 && offsetof(TLTR27, ProcessorName) == 993);
static_assert(offsetof(TLTR27, ClockRate) == 1012 && offsetof(TLTR27, FirmwareVersion) == 1020);
static_assert(offsetof(TLTR27, Description) == 1280);
static_assert(sizeof(CrateConnection) == 36 && offsetof(CrateConnection, CrateSerial) == 6);
static_assert(offsetof(CrateConnection, Channel) == 22 && offsetof(CrateConnection, TimeMark) == 28);
static_assert(sizeof(CrateInfoRecord) == 4);
static_assert(sizeof(CrateConfig) == 14 && offsetof(CrateConfig, DigitalOutput) == 8);

}  // namespace corvane
