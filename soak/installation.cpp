#include "soak/installation.h"

#include <vector>

#include "simulator/sequence.h"

namespace corvane::soak {

namespace {

std::string Key(const char* name, int64_t value) {
    return std::string(name) + " = " + std::to_string(value) + "\n";
}

std::string RandomAction(Chance& chance, std::string& call) {
    switch (chance.Below(12)) {
        case 0:
            return "unplug = true";
        case 1:
            return "delay = " + chance.Of<std::string>({"0.001", "0.01", "0.05", "0.2"});
        case 2:
            call = "LTR27_Recv";
            return Key("times", chance.From(1, 3)) + "stall = true";
        case 3:
        case 4:
            call = "LTR27_Recv";
            return Key("short", chance.From(0, 1100));
        case 5:
            call = "LTR27_Recv";
            return Key("excess", chance.Of<int64_t>({1, 16, 1 << 20}));
        case 6:
            call = chance.Of<const char*>({"LTR27_Recv", "LTR_Open"});
            return Key("marks", chance.Below(int64_t{1} << 32));
        case 7:
            call = "LTR27_ProcessData";
            return std::string("value = ") + chance.Of<const char*>({"nan", "inf", "-inf"});
        case 8:
            call = "LTR27_ProcessData";
            return Key("size", chance.Of<int64_t>({0, 1, 17, 1000, 2000, 4294967295}));
        default:
            return Key("error", -chance.Of<int64_t>({1, 7, 10000, 2147483648}));
    }
}

}  // namespace

Installation RandomInstallation(Chance& chance) {
    Installation made;
    const std::string speed = chance.Of<const char*>({"0", "0", "1", "20"});
    made.Scenario = "speed = " + speed + "\n" + Server("127.0.0.1");
    const int64_t crates = chance.OneIn(4) ? 2 : 1;
    for (int64_t crate = 1; crate <= crates; crate++) {
        std::vector<int> slots;
        for (int slot = static_cast<int>(chance.From(1, 8)); slots.empty() || chance.Below(3) != 0; slot += 2) {
            if (slot <= 16) slots.push_back(slot);
            if (slot > 16) break;
        }
        const std::string marks = chance.Of<const char*>({"by mode", "by mode", "by mode", "at once", "never"});
        std::string keys = "type = \"" + chance.Of<std::string>({"LTR010", "LTR021", "LTR030", "LTR031"}) + "\"\n";
        keys += "start_marks = \"" + marks + "\"\n" + Key("start_mark_kadr", chance.From(0, 300));
        if (chance.OneIn(2)) keys += "start_mark_after = 0.05\n";
        made.Scenario += Crate("CRATE" + std::to_string(crate), slots, keys);
        if (crate == 1) made.HasMarks = marks != "never";
    }
    return made;
}

// Most faults pass by themselves.
std::string RandomFault(Chance& chance) {
    std::string call = chance.Of<const char*>(
        {"LTR_Open",          "LTR_GetCrates",   "LTR_GetCrateInfo", "LTR_GetCrateModules",  "LTR_Config",
         "LTR_MakeStartMark", "LTR_Close",       "LTR_Init",         "LTR27_Init",           "LTR27_Open",
         "LTR27_Close",       "LTR27_GetConfig", "LTR27_SetConfig",  "LTR27_GetDescription", "LTR27_ADCStart",
         "LTR27_ADCStop",     "LTR27_Recv",      "LTR27_Recv",       "LTR27_Recv",           "LTR27_ProcessData",
         "LTR27_ProcessData"});
    const std::string action = RandomAction(chance, call);
    const bool module = call.starts_with("LTR27_") && call != "LTR27_Init";
    std::string fault = "call = \"" + call + "\"\n" + Key("after", chance.Below(6));
    if (module && chance.OneIn(2)) fault += Key("slot", chance.From(1, 8));
    if (action.find("times") == std::string::npos && !chance.OneIn(4)) fault += Key("times", chance.From(1, 4));
    return fault + action;
}

}  // namespace corvane::soak
