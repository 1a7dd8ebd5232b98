// What a simulated installation consists of: LTR servers, their crates, modules and mezzanines, and the faults that are
// to happen. Plain data, read from TOML once and never changed afterwards. The built-in default is also the
// documentation of the TOML keys.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "hardware/vendor_records.h"

namespace ltrsim {

constexpr int MezzanineChannels = 2;
constexpr int CodeSpan = 32768;  // codes from a mezzanine's bottom to its top
constexpr uint16_t Ltr27Id = 0x1B1B;

enum class SignalKind { Constant, Sine, Ramp, Square, Noise, Sequence };

// Offset + Amplitude * shape(Frequency * time) + a random part, all but Frequency (Hz) in the mezzanine's unit. A
// Sequence has no parameters: it numbers the kadrs.
struct Signal {
    SignalKind Kind = SignalKind::Constant;
    double Offset = 0;
    double Amplitude = 0;
    double Frequency = 0;
    double Noise = 0;  // half the width of the uniform random part
    uint32_t Seed = 0;
};

// code = (raw + Offset) * Scale
struct Calibration {
    double Offset = 0;
    double Scale = 1;
};

struct Mezzanine {
    std::string Name;
    std::string Serial;
    char Revision = 'A';
    std::string Unit;   // bytes of code page 1251
    double Bottom = 0;  // unit value at code 0
    double Top = 0;     // unit value at code 32768
    std::array<Signal, MezzanineChannels> Signals;
    std::array<Calibration, MezzanineChannels> Factory;
};

struct Module {
    uint32_t Slot = 0;  // 1 to 16
    uint16_t Id = 0;    // the module's number in both bytes
    std::string Serial;
    char Revision = 'A';
    uint32_t Firmware = 0;  // four numbers of a byte each, the most significant first
    std::string Processor;
    double ClockRate = 0;                                                          // Hz
    std::array<std::optional<Mezzanine>, corvane::MezzaninePositions> Mezzanines;  // of an LTR27 only
};

// ByMode: an internal mark comes at once, one that waits for an edge comes StartMarkAfter seconds later or never.
enum class StartMarks { ByMode, AtOnce, Never };

struct Crate {
    std::string Serial;
    uint8_t Type = 30;      // 30: LTR030
    uint8_t Interface = 1;  // 1 USB, 2 Ethernet
    int ListPosition = 0;   // 0 to 15, where the server lists it
    StartMarks Marks = StartMarks::ByMode;
    std::optional<double> StartMarkAfter;  // s
    int64_t StartMarkKadr = 3;  // at speed 0 a mark made at once appears this many kadrs after the next delivered one
    std::vector<Module> Modules;
};

struct Server {
    uint32_t Address = 0;  // the most significant byte is the first dotted component
    std::vector<Crate> Crates;
};

enum class FaultKind { Error, Delay, Short, Excess, Stall, Marks, Value, Size, Unplug };

struct Fault {
    std::string Call;  // export; empty: any
    std::optional<uint32_t> Server;
    std::optional<std::string> Crate;
    std::optional<uint32_t> Slot;
    int64_t After = 0;             // matching calls that pass first
    double At = 0;                 // s since the scenario was set; earlier calls pass and are not counted
    std::optional<int64_t> Times;  // calls that it acts on; none: all
    FaultKind Kind = FaultKind::Error;
    int32_t Code = 0;     // of Error
    double Number = 0;    // of Delay (s) and Value
    uint32_t Amount = 0;  // of Short, Excess, Marks and Size
};

struct Scenario {
    double Speed = 1;  // 1: real time; 0: as fast as its words are read
    std::vector<Server> Servers;
    std::vector<Fault> Faults;
};

// `source` names the text in messages. Both throw ScenarioError.
Scenario ReadScenario(std::string_view toml, const std::string& source);
Fault ReadFault(std::string_view toml, const std::string& source);

extern const char* const DefaultScenario;

// The text of the scenario file, or none when there is no file and the default applies; `path` receives its name.
// Throws ScenarioError for a file that can't be read.
std::optional<std::string> LoadScenarioFile(std::string& path);

}  // namespace ltrsim
