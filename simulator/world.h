// The one simulated installation of a process: its scenario, who is connected, what was called. One lock guards all of
// that. A call shares the ownership of its connection, which therefore exists until the call returns, even when the
// scenario is replaced meanwhile. Lock order: the world's, then a stream's.
#pragma once

#include <array>
#include <atomic>
#include <condition_variable>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
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
    const Crate& Definition;
    std::optional<Clock::time_point> LastMark = {};  // when the last one comes, or came
    uint32_t EarlierMarks = 0;                       // that came before it

    bool Pending(Clock::time_point now) const { return LastMark && *LastMark > now; }
    uint32_t Marks(Clock::time_point now) const { return EarlierMarks + (LastMark && *LastMark <= now ? 1 : 0); }
};

struct Connection {
    std::shared_ptr<const Scenario> Installation;  // keeps alive what the others refer to
    std::shared_ptr<CrateState> Crate;             // null: the server itself
    Target Where;
    std::atomic<bool> InCall = false;
};

struct ModuleConnection : Connection {
    explicit ModuleConnection(const Module& module);

    const Module& Board;
    // What LTR27_SetConfig gave last.
    uint8_t FrequencyDivisor = 0;
    std::array<corvane::MezzanineConfig, corvane::MezzaninePositions> Config;
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
    // Counts and reports a call that no correct driver makes; returns `code`.
    int32_t Violation(std::string_view function, std::string_view reason, int32_t code);
    // What the faults do to the call; a delay is over when this returns. It ends early when the faults are cleared.
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

    // These do what control.h says. Configure and AddFault return false when they fail; Message then gives the reason.
    bool Configure(const char* tomlText);
    bool AddFault(const char* tomlText);
    void ClearFaults();
    const char* Message();
    const char* BrokenReason();
    int32_t Violations();
    int32_t Calls(std::string_view function);
    int32_t DelayedCalls();
    int32_t OpenConnections();
    int32_t RunningModules();
    int32_t LastMarkMode();
    int32_t LastConfigWord(int32_t index);
    double ExpectedCode(int32_t slot, int32_t channel, int64_t kadr, double rate);

private:
    World() = default;
    void LoadOnce();
    void Set(Scenario scenario);
    void ForgetFaults();
    bool Refuse(const char* reason);
    const char* Lasting(const std::string& text) { return LastingTexts_.insert(text).first->c_str(); }
    double Elapsed(Clock::time_point now) const { return std::chrono::duration<double>(now - Begin_).count(); }
    const Server* FindServer(uint32_t address) const;
    std::shared_ptr<CrateState> FindCrate(const Server& server, const std::string& serial) const;
    void DropPendingMark(CrateState& crate, Clock::time_point now);

    std::mutex Mutex_;
    bool Loaded_ = false;
    std::string Broken_;  // why the scenario file can't be used; empty when it can
    std::shared_ptr<const Scenario> Current_;
    std::vector<std::shared_ptr<CrateState>> Crates_;
    Clock::time_point Begin_;  // when the scenario was set
    FaultList Faults_;
    int64_t FaultsCleared_ = 0;  // so often
    std::condition_variable DelaysEnd_;
    int32_t DelayedCalls_ = 0;
    uint32_t LastId_ = 0;  // ids are never used again, so that the use of a closed record is noticed
    std::map<uint32_t, std::shared_ptr<ModuleConnection>> Modules_;
    std::map<uint32_t, std::shared_ptr<CrateLink>> Links_;
    std::map<std::string, int32_t, std::less<>> CallCounts_;
    int32_t ViolationCount_ = 0;
    std::string FirstViolation_;
    std::string LastFailure_;
    std::set<std::string> LastingTexts_;  // every text that was returned, because callers keep the pointers
    int32_t MarkMode_ = -1;
    std::vector<uint16_t> ConfigWords_;
};

}  // namespace ltrsim
