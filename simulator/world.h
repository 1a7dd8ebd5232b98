// The one simulated installation of a process: its scenario, who is connected, what was called. One lock guards the
// structure; connections are shared, so that one outlives its call even when the scenario is replaced meanwhile. Lock
// order: the world's, then a stream's.
#pragma once

#include <atomic>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "simulator/fault_list.h"
#include "simulator/module_stream.h"
#include "simulator/scenario.h"

namespace ltrsim {

// A crate and the START marks that it makes; guarded by the world's lock.
struct CrateState {
    const Crate& Plan;
    std::vector<Clock::time_point> StartMarks = {};  // a moment may lie ahead
};

struct Connection {
    std::shared_ptr<const Scenario> Plan;  // keeps what the others refer to
    std::shared_ptr<CrateState> Crate;     // null: the server itself
    Target Where;
    std::atomic<bool> InCall = false;
};

struct ModuleConnection : Connection {
    explicit ModuleConnection(const Module& module) : Board(module), Stream(module) {}

    const Module& Board;
    uint8_t FrequencyDivisor = 0;
    double Calibration[corvane::MezzaninePositions][2 * MezzanineChannels] = {};
    ModuleStream Stream;
};

struct CrateLink : Connection {
    const Server* Lists = nullptr;
};

class World {
public:
    static World& Instance();

    // Counts a call and, the first time, reads the scenario file. False while the scenario is broken.
    bool Enter(std::string_view function);
    // Takes note of a call that no correct driver makes; returns `code`.
    int32_t Violation(std::string_view function, std::string_view reason, int32_t code);
    // What the faults make of the call; a delay has passed when this returns.
    Verdict Judge(std::string_view function, const Target& target);

    // These return Success with `id` set, or an error code.
    int32_t OpenModule(uint32_t address, const std::string& crateSerial, uint32_t slot, uint32_t& id);
    int32_t OpenLink(uint32_t address, const std::string& crateSerial, uint32_t& id, uint32_t& timeMark);
    std::shared_ptr<ModuleConnection> FindModule(uint32_t id);
    std::shared_ptr<CrateLink> FindLink(uint32_t id);
    void CloseModule(uint32_t id);
    void CloseLink(uint32_t id);

    void StartModule(ModuleConnection& module, double rate);
    void RequestStartMark(const CrateLink& link, int32_t mode);
    void RememberConfig(const corvane::CrateConfig& config);

    // Control, as control.h describes it. The failing two return false and keep the reason for Message.
    bool Configure(const char* tomlText);
    bool AddFault(const char* tomlText);
    void ClearFaults();
    const char* Message();
    const char* BrokenReason();
    int32_t Violations();
    int32_t Calls(std::string_view function);
    int32_t OpenConnections();
    int32_t RunningModules();
    int32_t LastMarkMode();
    int32_t LastConfigWord(int32_t index);
    double ExpectedCode(int32_t slot, int32_t channel, int64_t kadr, double rate);

private:
    World() = default;
    void LoadOnce();
    void Set(Scenario scenario);
    bool Refuse(const char* reason);
    const char* Keep(const std::string& text) { return Kept.insert(text).first->c_str(); }
    double Elapsed(Clock::time_point now) const { return std::chrono::duration<double>(now - Begin).count(); }
    const Server* FindServer(uint32_t address) const;
    std::shared_ptr<CrateState> FindCrate(const Server& server, const std::string& serial) const;
    static uint32_t StartMarkCount(const CrateState& crate, Clock::time_point now);

    std::mutex Mutex;
    bool Loaded = false;
    std::string Broken;  // reason why the scenario file doesn't count; empty when it does
    std::shared_ptr<const Scenario> Current;
    std::vector<std::shared_ptr<CrateState>> Crates;
    Clock::time_point Begin;  // when the scenario was set
    FaultList Faults;
    uint32_t LastId = 0;  // ids are never used again, so that a stale record is seen
    std::map<uint32_t, std::shared_ptr<ModuleConnection>> Modules;
    std::map<uint32_t, std::shared_ptr<CrateLink>> Links;
    std::map<std::string, int32_t, std::less<>> CallCounts;
    int32_t ViolationCount = 0;
    std::string FirstViolation;
    std::string LastFailure;
    std::set<std::string> Kept;  // texts handed out; they stay valid
    int32_t MarkMode = -1;
    std::vector<uint16_t> ConfigWords;
};

}  // namespace ltrsim
