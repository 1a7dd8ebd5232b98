#include "engine/device.h"

#include <cstring>
#include <exception>
#include <new>

#include "engine/module_control.h"
#include "engine/rate.h"
#include "engine/recording.h"
#include "hardware/vendor_text.h"
#include "platform/ansi_text.h"
#include "platform/user_interface.h"
#include "selection/dlgQuorn.h"
#include "selection/mQuorn.h"

namespace corvane {

namespace {

constexpr uint32_t AllMezzanines = 510;  // bits 1 to 8 of the description flags, one a mezzanine position

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
    MezzanineInfo mezzanine;
    if (description.Active == 0) return mezzanine;
    mezzanine.Name = BytesToText(description.Name);
    mezzanine.Serial = BytesToText(description.Serial);
    mezzanine.Revision = platform::FromAnsi(std::string_view(&description.Revision, 1)) + ".0";
    mezzanine.Unit = BytesToText(config.Unit);
    mezzanine.Top = static_cast<float>(FullScale * config.Scale + config.Offset);
    mezzanine.Bottom = static_cast<float>(config.Offset);
    return mezzanine;
}

bool ReadModule(DriverState& state, ModuleRecord& module) {
    return state.ModuleApi.GetConfig(module.Handle) && state.ModuleApi.GetDescription(module.Handle, AllMezzanines);
}

bool OpenModule(DriverState& state, ModuleRecord& module, const CrateListEntry& crate, int32_t slot) {
    TLTR27& handle = module.Handle;
    if (!state.ModuleApi.Open(handle, crate.NetAddr, crate.Serial, static_cast<uint32_t>(slot))) {
        state.Device.LastError = state.ModuleApi.GetErrorString();
        return false;
    }
    if (!ReadModule(state, module)) {
        state.Device.LastError = state.ModuleApi.GetErrorString();
        state.ModuleApi.Close(handle);
        return false;
    }
    module.Slot = slot;
    module.Name = TLTR27API::ModuleName(handle);
    module.Serial = TLTR27API::SerialNumber(handle);
    module.Firmware = TLTR27API::FirmwareVersion(handle);
    module.Info = ModuleInfoText(module);
    for (size_t k = 0; k < module.Mezzanines.size(); k++) {
        // What the library calibrates with is its own default until the factory's coefficients are put in.
        // As bytes: the packed records don't align doubles.
        std::memcpy(&handle.Config[k].Calibration, &handle.Description[k].Calibration,
                    sizeof handle.Config[k].Calibration);
        module.Mezzanines[k] = ReadMezzanine(handle.Description[k], handle.Config[k]);
    }
    module.PollTick = platform::TickCount();
    return true;
}

// Index of the crate to open, or -1.
int ChooseCrate(DriverState& state) {
    if (state.CrateListCount < 1) return -1;
    return state.CrateListCount == 1 ? 0 : SelectDevice(state);
}

bool OpenSelectedCrate(DriverState& state) {
    const int choice = ChooseCrate(state);
    if (choice < 0 || choice >= state.CrateListCount) return false;
    const CrateListEntry& crate = state.CrateList[static_cast<size_t>(choice)];
    const platform::BusyPointer busyPointer;
    EngineState& engine = state.Engine;
    CloseModules(state);
    engine.Modules = std::vector<ModuleRecord>(crate.Modules.size());
    for (const ModuleListEntry& entry : crate.Modules) {
        if (OpenModule(state, engine.Modules[static_cast<size_t>(engine.OpenedCount)], crate, entry.Slot)) {
            engine.OpenedCount++;
        }
        if (engine.OpenedCount == MaxModules) break;
    }
    if (engine.OpenedCount == 0) return false;
    state.Crate.Address = crate.Address;
    state.Crate.NetAddr = crate.NetAddr;
    state.Crate.TypeName = crate.TypeName;
    state.Crate.Serial = crate.Serial;
    state.Crate.Interface = crate.Interface;
    state.Crate.Info = CrateInfoText(state.Crate);
    BuildChannelModel(state.Device, engine.Opened());
    return true;
}

// A dialog that can't be made is a failure as any other of the opening, which the host reads in LastError. Only memory
// that has run out stays an exception.
bool OpenFoundCrate(DriverState& state) {
    try {
        return FindCrates(state, state.Device.ADCName) >= 1 && OpenSelectedCrate(state);
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const std::exception& failure) {
        state.Device.LastError = std::string("Error: ") + failure.what();
        return false;
    }
}

}  // namespace

bool OpenDevice(DriverState& state) {
    state.Detected = false;
    if (!TLTR27API::LibraryPresent()) {
        state.Device.LastError = "Please install \"" + TLTR27API::LibraryName() + "\"!";
        return false;
    }
    if (!OpenFoundCrate(state)) return false;
    StopAllModules(state);
    ApplyRate(state, state.Input.Rate);
    state.Device.LastError.clear();
    return true;
}

void CloseModules(DriverState& state) {
    for (ModuleRecord& module : state.Engine.Opened()) state.ModuleApi.Close(module.Handle);
    state.Engine.OpenedCount = 0;
}

bool CloseDevice(DriverState& state) {
    EngineState& engine = state.Engine;
    StopRecording(state);
    // The thread makes at most four more calls that may wait: two receives, and stopping two modules. Five seconds more
    // cover a busy server; whoever has not come back then never will.
    const uint32_t bound = 2 * static_cast<uint32_t>(engine.RecvTimeout) + 5000;
    if (!engine.Thread.WaitEnd(bound)) return false;
    CloseModules(state);
    state.Detected = false;
    return true;
}

}  // namespace corvane
