#include "engine/device.h"

#include <algorithm>
#include <cstring>
#include <exception>
#include <memory>
#include <new>

#include "engine/module_control.h"
#include "engine/rate.h"
#include "engine/recording.h"
#include "engine/recording_log.h"
#include "hardware/vendor_text.h"
#include "platform/ansi_text.h"
#include "platform/event_log.h"
#include "platform/user_interface.h"
#include "selection/dlgQuorn.h"
#include "selection/mQuorn.h"

namespace corvane {

namespace {

constexpr uint32_t AllMezzanines = 510;  // bits 1 to 8 of the description flags, one for each mezzanine position

std::string ModuleInfoText(const ModuleRecord& module) {
    return "Board: " + module.Name + "\r\nBoard SN: " + module.Serial + "\r\nFirmware: v" + module.Firmware +
           "\r\nCrate Slot: " + std::to_string(module.Slot);
}

std::string CrateInfoText(const CrateInfo& crate) {
    return "Crate: " + crate.TypeName + "\r\nCrate SN: " + crate.Serial + "\r\nCrate Port: " + crate.Interface +
           "\r\nCrate IP: " + crate.Address;
}

MezzanineInfo ReadMezzanine(const MezzanineDescription& description, const MezzanineConfig& config) {
    constexpr double FullScale = 32768;
    if (description.Active == 0) return {};
    MezzanineInfo mezzanine;
    mezzanine.Name = BytesToText(description.Name);
    mezzanine.Serial = BytesToText(description.Serial);
    mezzanine.Revision = platform::FromAnsi(std::string_view(&description.Revision, 1)) + ".0";
    mezzanine.Unit = BytesToText(config.Unit);
    mezzanine.Top = static_cast<float>(FullScale * config.Scale + config.Offset);
    mezzanine.Bottom = static_cast<float>(config.Offset);
    return mezzanine;
}

bool ReadModule(TLTR27API& api, ModuleRecord& module) {
    return api.GetConfig(module.Handle) && api.GetDescription(module.Handle, AllMezzanines);
}

std::string MezzanineNames(const ModuleRecord& module) {
    std::string names;
    for (const MezzanineInfo& mezzanine : module.Mezzanines) {
        names += (names.empty() ? ", mezzanines " : ", ") + (mezzanine.Name.empty() ? "-" : mezzanine.Name);
    }
    return names;
}

bool OpenModule(TLTR27API& api, ModuleRecord& module, const CrateListEntry& crate, int32_t slot,
                std::string& lastError) {
    TLTR27& handle = module.Handle;
    if (!api.Open(handle, crate.NetAddr, crate.Serial, static_cast<uint32_t>(slot))) {
        lastError = api.GetErrorString();
        platform::LogEvent([&] { return "slot " + std::to_string(slot) + " can't be opened. " + lastError; });
        return false;
    }
    const auto close = [&](TLTR27* record) { api.Close(*record); };
    std::unique_ptr<TLTR27, decltype(close)> open(&handle, close);  // closed again unless all of it is read
    if (!ReadModule(api, module)) {
        lastError = api.GetErrorString();
        platform::LogEvent([&] { return "slot " + std::to_string(slot) + " can't be read. " + lastError; });
        return false;
    }
    module.Slot = slot;
    module.Name = TLTR27API::ModuleName(handle);
    module.Serial = TLTR27API::SerialNumber(handle);
    module.Firmware = TLTR27API::FirmwareVersion(handle);
    module.Info = ModuleInfoText(module);
    for (size_t k = 0; k < module.Mezzanines.size(); k++) {
        // The library calibrates with its own defaults until it is given the factory's coefficients. These are copied
        // as bytes, because the packed records don't align doubles.
        std::memcpy(&handle.Config[k].Calibration, &handle.Description[k].Calibration,
                    sizeof handle.Config[k].Calibration);
        module.Mezzanines[k] = ReadMezzanine(handle.Description[k], handle.Config[k]);
    }
    platform::LogEvent([&] { return "opened " + module.Info + MezzanineNames(module); });
    module.PollTick = platform::TickCount();
    static_cast<void>(open.release());
    return true;
}

// The serials of the crates that were found, as a user reads them.
std::string FoundSerials(const CrateSearch& search) {
    std::string serials;
    for (const CrateListEntry& crate : search.CrateList) {
        serials += (serials.empty() ? "\"" : ", \"") + crate.Serial + "\"";
    }
    return serials;
}

// The crate to open; null: none. A user who closes the dialog knows why there is none; where no user was asked,
// lastError says why.
const CrateListEntry* ChooseCrate(const CrateSearch& search, std::string& lastError) {
    const std::vector<CrateListEntry>& crates = search.CrateList;
    if (!search.CrateSerial.empty()) {
        const auto crate = std::ranges::find(crates, search.CrateSerial, &CrateListEntry::Serial);
        if (crate != crates.end()) return &*crate;
        const std::string found = crates.empty() ? "None was found." : "Found: " + FoundSerials(search) + ".";
        lastError = "There is no crate with the serial number \"" + search.CrateSerial + "\". " + found;
        return nullptr;
    }
    if (crates.size() < 2) return crates.empty() ? nullptr : &crates.front();
    if (search.Interactive) {
        const auto choice = static_cast<size_t>(SelectDevice(search));
        return choice < crates.size() ? &crates[choice] : nullptr;
    }
    lastError = "Several crates were found; one has to be chosen by its serial number: " + FoundSerials(search) + ".";
    return nullptr;
}

bool OpenSelectedCrate(const CrateSearch& search, DeviceInfo& device, EngineState& engine, CrateInfo& crate) {
    const CrateListEntry* chosen = ChooseCrate(search, device.LastError);
    if (chosen == nullptr) return false;
    platform::LogEvent([&] { return "opening crate " + chosen->Serial; });
    const platform::BusyPointer busyPointer;
    CloseModules(engine);  // an opening that ran out of memory may have left some
    engine.Modules = std::vector<ModuleRecord>(chosen->Modules.size());
    for (const ModuleListEntry& entry : chosen->Modules) {
        ModuleRecord& module = engine.Modules[static_cast<size_t>(engine.OpenedCount)];
        if (OpenModule(engine.ModuleApi, module, *chosen, entry.Slot, device.LastError)) {
            engine.OpenedCount++;
        }
        if (engine.OpenedCount == MaxModules) break;
    }
    if (engine.OpenedCount == 0) return false;
    crate.Address = chosen->Address;
    crate.NetAddr = chosen->NetAddr;
    crate.TypeName = chosen->TypeName;
    crate.Serial = chosen->Serial;
    crate.Interface = chosen->Interface;
    crate.Info = CrateInfoText(crate);
    BuildChannelModel(device, engine.Opened());
    return true;
}

// A dialog that can't be made is reported like every other failure to open: in LastError. Only std::bad_alloc goes on
// to the caller.
bool OpenFoundCrate(DeviceInfo& device, EngineState& engine, CrateInfo& crate, CrateSearch& search) {
    try {
        return FindCrates(search, device.ADCName, device.ADCName, device.LastError) >= 0 &&
               OpenSelectedCrate(search, device, engine, crate);
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const std::exception& failure) {
        device.LastError = std::string("Error: ") + failure.what();
        return false;
    }
}

}  // namespace

bool OpenDevice(DeviceInfo& device, InputState& input, EngineState& engine, CrateInfo& crate, CrateSearch& search) {
    if (!TLTR27API::LibraryPresent()) {
        device.LastError = "Please install \"" + TLTR27API::LibraryName() + "\"!";
        return false;
    }
    if (!OpenFoundCrate(device, engine, crate, search)) {
        platform::LogEvent([&] { return "no device opened. " + device.LastError; });
        return false;
    }
    StopAllModules(engine);
    ApplyRate(input, engine, input.Rate);
    device.LastError.clear();
    return true;
}

void CloseModules(EngineState& engine) {
    for (ModuleRecord& module : engine.Opened()) engine.ModuleApi.Close(module.Handle);
    engine.OpenedCount = 0;
}

bool CloseDevice(EngineState& engine) {
    StopRecording(engine);
    // The thread makes at most four more calls that may wait: two receives, each up to its time-out, and stopping two
    // modules. Five more seconds are enough for a busy server; a thread that has not ended by then never will.
    const uint32_t bound = 2 * static_cast<uint32_t>(engine.RecvTimeout) + 5000;  // ms
    if (!engine.Thread.WaitEnd(bound)) {
        platform::LogEvent(
            [&] { return "the recording thread does not come back from the vendor library: nothing is closed"; });
        return false;
    }
    LogEnded(engine);
    if (engine.OpenedCount > 0) platform::LogEvent([&] { return "device closed"; });
    CloseModules(engine);
    return true;
}

}  // namespace corvane
