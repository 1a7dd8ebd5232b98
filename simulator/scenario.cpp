#include "simulator/scenario.h"

#include <algorithm>
#include <cmath>
#include <initializer_list>
#include <limits>

#include "simulator/code_page.h"
#include "simulator/error_codes.h"
#include "simulator/scenario_error.h"
#include "simulator/toml_table.h"

namespace ltrsim {

namespace {

constexpr double LongestDelay = 1e6;  // s; for ever, as far as a test can tell
constexpr double Largest = 1e9;       // of every physical value: keeps all arithmetic finite

template <class Value>
struct Choice {
    std::string_view Name;
    Value Meaning;
};

template <class Value>
Value Choose(const TomlTable& table, std::string_view key, const std::string& name,
             std::initializer_list<Choice<Value>> choices) {
    std::string names;
    for (const Choice<Value>& choice : choices) {
        if (choice.Name == name) return choice.Meaning;
        names += (names.empty() ? "" : ", ") + std::string(choice.Name);
    }
    table.Refuse(key, "must be one of: " + names);
}

Signal ReadSignal(const toml::table& toml, const std::string& source) {
    const TomlTable table(toml, source, {"kind", "offset", "amplitude", "frequency", "noise", "seed"});
    Signal signal;
    signal.Kind = Choose<SignalKind>(table, "kind", table.Required(table.Text("kind"), "kind"),
                                     {{"constant", SignalKind::Constant},
                                      {"sine", SignalKind::Sine},
                                      {"ramp", SignalKind::Ramp},
                                      {"square", SignalKind::Square},
                                      {"noise", SignalKind::Noise},
                                      {"sequence", SignalKind::Sequence}});
    const bool periodic =
        signal.Kind == SignalKind::Sine || signal.Kind == SignalKind::Ramp || signal.Kind == SignalKind::Square;
    signal.Offset = table.Number("offset", -Largest, Largest).value_or(0);
    signal.Noise = table.Number("noise", 0, Largest).value_or(0);
    signal.Seed = static_cast<uint32_t>(table.Integer("seed", 0, std::numeric_limits<int32_t>::max()).value_or(0));
    if (periodic) {
        signal.Amplitude = table.Required(table.Number("amplitude", -Largest, Largest), "amplitude");
        signal.Frequency = table.Required(table.Number("frequency", 0, 1e6), "frequency");
    } else if (table.Find("amplitude") || table.Find("frequency")) {
        table.Refuse(table.Find("amplitude") ? "amplitude" : "frequency", "is for sine, ramp and square only");
    }
    if (signal.Kind == SignalKind::Noise) table.Required(table.Number("noise", 0, Largest), "noise");
    if (signal.Kind == SignalKind::Sequence && toml.size() > 1) table.Refuse("kind", "sequence takes no other keys");
    return signal;
}

void ReadSignals(const TomlTable& table, const std::string& source, Mezzanine& mezzanine) {
    const toml::node* node = table.Find("signal");
    if (node && node->is_table()) {
        mezzanine.Signals.fill(ReadSignal(*node->as_table(), source));
        return;
    }
    size_t read = 0;
    table.ForEach("signal", [&](const toml::table& element) {
        if (read < mezzanine.Signals.size()) mezzanine.Signals[read] = ReadSignal(element, source);
        read++;
    });
    if (read != mezzanine.Signals.size())
        table.Refuse("signal", "must be one table, or an array of two for the two channels");
}

// Coefficients that change the codes, differently on each channel, so that a driver that doesn't apply them is noticed.
// Scales below 1 keep a calibrated code within half a code of its signal.
Calibration FactoryDefault(const Signal& signal, uint32_t slot, size_t position, size_t channel) {
    if (signal.Kind == SignalKind::Sequence) return {};
    const double step = static_cast<double>(position * MezzanineChannels + channel);
    return {-40.0 - 3.5 * step - slot, 0.95 + 0.002 * step};
}

void ReadCalibration(const TomlTable& table, uint32_t slot, size_t position, Mezzanine& mezzanine) {
    const toml::node* node = table.Find("calibration");
    const toml::array* array = node ? node->as_array() : nullptr;
    if (node && (!array || array->size() != 4))
        table.Refuse("calibration", "must be offset and scale of both channels");
    for (size_t channel = 0; channel < MezzanineChannels; channel++) {
        Calibration& factory = mezzanine.Factory[channel];
        factory = FactoryDefault(mezzanine.Signals[channel], slot, position, channel);
        if (!array) continue;
        factory.Offset = array->get(2 * channel)->value<double>().value_or(1);
        factory.Scale = array->get(2 * channel + 1)->value<double>().value_or(0);
        // Within these bounds the raw code of every calibrated code fits its 16 bits.
        if (!(factory.Offset >= -10000 && factory.Offset <= 0 && factory.Scale >= 0.6 && factory.Scale <= 2)) {
            table.Refuse("calibration", "has offsets from -10000 to 0 and scales from 0.6 to 2");
        }
    }
}

void ReadMezzanine(const toml::table& toml, const std::string& source, Module& module) {
    const TomlTable table(toml, source,
                          {"position", "name", "serial", "revision", "unit", "bottom", "top", "signal", "calibration"});
    const int64_t number = table.Required(table.Integer("position", 1, corvane::MezzaninePositions), "position");
    const size_t position = static_cast<size_t>(number - 1);
    if (module.Mezzanines[position]) table.Refuse("position", "is used twice");
    Mezzanine mezzanine;
    mezzanine.Name = table.Required(table.FieldText("name"), "name");
    mezzanine.Serial = table.FieldText("serial").value_or(std::to_string(module.Slot) + "-" + std::to_string(number));
    mezzanine.Revision = table.Letter("revision").value_or('A');
    mezzanine.Unit = ToCodePage1251(table.Required(table.Text("unit"), "unit"));
    if (mezzanine.Unit.size() > corvane::VendorTextSize) table.Refuse("unit", "must have at most 16 characters");
    mezzanine.Bottom = table.Required(table.Number("bottom", -Largest, Largest), "bottom");
    mezzanine.Top = table.Required(table.Number("top", -Largest, Largest), "top");
    ReadSignals(table, source, mezzanine);
    ReadCalibration(table, module.Slot, position, mezzanine);
    module.Mezzanines[position] = std::move(mezzanine);
}

// "LTR27" or the number itself.
uint16_t ReadModuleId(const TomlTable& table) {
    const toml::node* node = table.Find("id");
    if (node && node->is_integer()) return static_cast<uint16_t>(*table.Integer("id", 1, 0xFFFF));
    const std::string name = table.Required(table.Text("id"), "id");
    unsigned number = 0;
    for (size_t at = 3; at < name.size() && name[at] >= '0' && name[at] <= '9' && number <= 255; at++) {
        number = number * 10 + static_cast<unsigned>(name[at] - '0');
    }
    if (number < 1 || number > 255 || name != "LTR" + std::to_string(number)) {
        table.Refuse("id", "must be LTR and a number from 1 to 255, or the 16-bit id itself");
    }
    return static_cast<uint16_t>(number << 8 | number);
}

void ReadModule(const toml::table& toml, const std::string& source, Crate& crate) {
    const TomlTable table(toml, source,
                          {"slot", "id", "serial", "revision", "firmware", "processor", "clock_rate", "mezzanine"});
    Module module;
    module.Slot = static_cast<uint32_t>(table.Required(table.Integer("slot", 1, corvane::CrateSlots), "slot"));
    const auto sameSlot = [&](const Module& other) { return other.Slot == module.Slot; };
    if (std::any_of(crate.Modules.begin(), crate.Modules.end(), sameSlot)) table.Refuse("slot", "is used twice");
    module.Id = ReadModuleId(table);
    module.Serial = table.FieldText("serial").value_or(crate.Serial.substr(0, 12) + "-" + std::to_string(module.Slot));
    module.Revision = table.Letter("revision").value_or('A');
    module.Firmware = table.Firmware("firmware").value_or(0x01000000);
    module.Processor = table.FieldText("processor").value_or("ATMEGA8515");
    module.ClockRate = table.Number("clock_rate", 0, Largest).value_or(15e6);
    if (module.Id != Ltr27Id && table.Find("mezzanine")) table.Refuse("mezzanine", "is for LTR27 modules only");
    table.ForEach("mezzanine", [&](const toml::table& element) { ReadMezzanine(element, source, module); });
    crate.Modules.push_back(std::move(module));
}

void ReadCrate(const toml::table& toml, const std::string& source, Server& server) {
    const TomlTable table(toml, source,
                          {"serial", "type", "interface", "list_position", "start_marks", "start_mark_after",
                           "start_mark_kadr", "module"});
    Crate crate;
    crate.Serial = table.Required(table.FieldText("serial"), "serial");
    crate.Type = Choose<uint8_t>(table, "type", table.Text("type").value_or("LTR030"),
                                 {{"LTR010", 10}, {"LTR021", 21}, {"LTR030", 30}, {"LTR031", 31}, {"LTR032", 32}});
    crate.Interface =
        Choose<uint8_t>(table, "interface", table.Text("interface").value_or("USB"), {{"USB", 1}, {"Ethernet", 2}});
    crate.ListPosition = static_cast<int>(
        table.Integer("list_position", 0, corvane::MaxCrates - 1).value_or(static_cast<int64_t>(server.Crates.size())));
    crate.Marks = Choose<StartMarks>(
        table, "start_marks", table.Text("start_marks").value_or("by mode"),
        {{"by mode", StartMarks::ByMode}, {"at once", StartMarks::AtOnce}, {"never", StartMarks::Never}});
    crate.StartMarkAfter = table.Number("start_mark_after", 0, 3600);
    crate.StartMarkKadr = table.Integer("start_mark_kadr", 0, 1000000).value_or(crate.StartMarkKadr);
    for (const Crate& other : server.Crates) {
        if (other.Serial == crate.Serial) table.Refuse("serial", "is used twice");
        if (other.ListPosition == crate.ListPosition) table.Refuse("list_position", "is used twice");
    }
    if (crate.ListPosition >= corvane::MaxCrates) table.Refuse("serial", "is that of a 17th crate; a server has 16");
    table.ForEach("module", [&](const toml::table& element) { ReadModule(element, source, crate); });
    server.Crates.push_back(std::move(crate));
}

void ReadServer(const toml::table& toml, const std::string& source, Scenario& scenario) {
    const TomlTable table(toml, source, {"address", "crate"});
    Server server;
    server.Address = table.Required(table.Address("address"), "address");
    for (const Server& other : scenario.Servers) {
        if (other.Address == server.Address) table.Refuse("address", "is used twice");
    }
    table.ForEach("crate", [&](const toml::table& element) { ReadCrate(element, source, server); });
    scenario.Servers.push_back(std::move(server));
}

// What a fault does, and the calls that it can do that to; none: any.
struct FaultAction {
    std::string_view Key;
    FaultKind Kind;
    std::vector<std::string_view> Calls = {};
};

const FaultAction FaultActions[] = {{"error", FaultKind::Error},
                                    {"delay", FaultKind::Delay},
                                    {"short", FaultKind::Short, {"LTR27_Recv"}},
                                    {"excess", FaultKind::Excess, {"LTR27_Recv"}},
                                    {"stall", FaultKind::Stall, {"LTR27_Recv"}},
                                    {"marks", FaultKind::Marks, {"LTR27_Recv", "LTR_Open"}},
                                    {"value", FaultKind::Value, {"LTR27_ProcessData"}},
                                    {"size", FaultKind::Size, {"LTR27_ProcessData"}},
                                    {"unplug", FaultKind::Unplug}};

const FaultAction& FindFaultAction(const TomlTable& table) {
    const FaultAction* action = nullptr;
    for (const FaultAction& candidate : FaultActions) {
        if (!table.Find(candidate.Key)) continue;
        if (action) table.Refuse(candidate.Key, "can't stand beside '" + std::string(action->Key) + "'");
        action = &candidate;
    }
    if (!action) table.Refuse("error", "or delay, short, excess, stall, marks, value, size or unplug is missing");
    return *action;
}

void ReadFaultAction(const TomlTable& table, Fault& fault) {
    const auto& [key, kind, calls] = FindFaultAction(table);
    constexpr int64_t LargestAmount = std::numeric_limits<uint32_t>::max();
    fault.Kind = kind;
    if (kind == FaultKind::Error) {
        using Codes = std::numeric_limits<int32_t>;
        fault.Code = static_cast<int32_t>(*table.Integer(key, Codes::min(), Codes::max()));
        if (fault.Code == 0) table.Refuse(key, "can't be 0, which is success");
    } else if (kind == FaultKind::Delay) {
        fault.Number = *table.Number(key, 0, LongestDelay);
    } else if (kind == FaultKind::Value) {
        const std::optional<double> value = table.Find(key)->value<double>();  // also nan and inf
        if (!value) table.Refuse(key, "must be a number");
        fault.Number = *value;
    } else if (kind == FaultKind::Stall || kind == FaultKind::Unplug) {
        table.True(key);
    } else {
        fault.Amount = static_cast<uint32_t>(*table.Integer(key, 0, LargestAmount));
    }
    if (calls.empty()) return;
    if (fault.Call.empty()) fault.Call = calls.front();
    if (std::ranges::find(calls, fault.Call) == calls.end()) {
        table.Refuse(key, "is not for " + fault.Call + " but for " + std::string(calls.front()));
    }
}

// A fault can choose its calls only by what they are passed: the Init functions don't know yet what the record will be
// connected to, and no crate function knows a slot.
void CheckAim(const TomlTable& table, const Fault& fault) {
    const bool init = fault.Call == "LTR_Init" || fault.Call == "LTR27_Init";
    for (const std::string_view key : {"server", "crate", "slot"}) {
        const bool passed = !init && (key != "slot" || !fault.Call.starts_with("LTR_"));
        if (table.Find(key) && !passed)
            table.Refuse(key, "is not passed to " + fault.Call + ": the fault would never act");
    }
}

Fault ReadFaultTable(const toml::table& toml, const std::string& source) {
    const TomlTable table(toml, source,
                          {"call", "server", "crate", "slot", "after", "at", "times", "error", "delay", "short",
                           "excess", "stall", "marks", "value", "size", "unplug"});
    Fault fault;
    fault.Call = table.Text("call").value_or("");
    if (table.Find("call") && !IsFaultableCall(fault.Call))
        table.Refuse("call", "is no simulated function with a result");
    fault.Server = table.Address("server");
    fault.Crate = table.FieldText("crate");
    if (const auto slot = table.Integer("slot", 1, corvane::CrateSlots)) fault.Slot = static_cast<uint32_t>(*slot);
    CheckAim(table, fault);
    fault.After = table.Integer("after", 0, std::numeric_limits<int32_t>::max()).value_or(0);
    fault.At = table.Number("at", 0, Largest).value_or(0);
    fault.Times = table.Integer("times", 1, std::numeric_limits<int32_t>::max());
    ReadFaultAction(table, fault);
    return fault;
}

}  // namespace

Scenario ReadScenario(std::string_view toml, const std::string& source) {
    const toml::table root = ParseToml(toml, source);
    const TomlTable table(root, source, {"speed", "server", "fault"});
    Scenario scenario;
    scenario.Speed = table.Number("speed", 0, 1000).value_or(1);
    if (scenario.Speed > 0 && scenario.Speed < 0.001) table.Refuse("speed", "must be 0 or at least 0.001");
    table.ForEach("server", [&](const toml::table& element) { ReadServer(element, source, scenario); });
    table.ForEach("fault",
                  [&](const toml::table& element) { scenario.Faults.push_back(ReadFaultTable(element, source)); });
    return scenario;
}

Fault ReadFault(std::string_view toml, const std::string& source) {
    const toml::table root = ParseToml(toml, source);
    return ReadFaultTable(root, source);
}

}  // namespace ltrsim
