#include "simulator/world.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <limits>

#include "simulator/error_codes.h"
#include "simulator/record_fields.h"
#include "simulator/scenario_error.h"

namespace ltrsim {

namespace {

constexpr int32_t InternalMark = 5;  // mark mode in which the crate makes the START mark itself

}  // namespace

ModuleConnection::ModuleConnection(const Module& module) : Board(module), Stream(module) {
    std::transform(module.Mezzanines.begin(), module.Mezzanines.end(), Config.begin(), InitialConfig);
}

World& World::Instance() {
    // Never destroyed: at the end of the process another thread may still be inside a call.
    static World& world = *new World;
    return world;
}

void World::LoadOnce() {
    if (Loaded_) return;
    Loaded_ = true;
    std::string path;
    try {
        const std::optional<std::string> text = LoadScenarioFile(path);
        Set(text ? ReadScenario(*text, path) : ReadScenario(DefaultScenario, "built-in scenario"));
    } catch (const std::exception& error) {
        Set(Scenario());
        Broken_ = LastFailure_ = error.what();
        std::fprintf(stderr, "ltrsim: %s\n", error.what());
    }
}

void World::Set(Scenario scenario) {
    for (const auto& [id, module] : Modules_) module->Stream.Abandon();
    Modules_.clear();
    Links_.clear();
    CallCounts_.clear();
    ViolationCount_ = 0;
    FirstViolation_.clear();
    LastFailure_.clear();
    Broken_.clear();
    MarkMode_ = -1;
    ConfigWords_.clear();
    Current_ = std::make_shared<const Scenario>(std::move(scenario));
    Crates_.clear();
    for (const Server& server : Current_->Servers) {
        for (const Crate& crate : server.Crates) Crates_.push_back(std::make_shared<CrateState>(CrateState{crate}));
    }
    ForgetFaults();
    for (const Fault& fault : Current_->Faults) Faults_.Add(fault);
    Begin_ = Clock::now();
}

bool World::Enter(std::string_view function) {
    const std::scoped_lock lock(Mutex_);
    LoadOnce();
    auto count = CallCounts_.find(function);
    if (count == CallCounts_.end()) count = CallCounts_.emplace(function, 0).first;
    count->second++;
    return Broken_.empty();
}

int32_t World::Violation(std::string_view function, std::string_view reason, int32_t code) {
    const std::string text = std::string(function) + ": " + std::string(reason);
    const std::scoped_lock lock(Mutex_);
    std::fprintf(stderr, "ltrsim: violation: %s\n", text.c_str());
    if (ViolationCount_++ == 0) FirstViolation_ = text;
    return code;
}

Verdict World::Judge(std::string_view function, const Target& target) {
    std::unique_lock lock(Mutex_);
    const Verdict verdict = Faults_.Judge(function, target, Elapsed(Clock::now()));
    if (verdict.Delay > 0) {
        const auto cleared = [this, begun = FaultsCleared_] { return FaultsCleared_ != begun; };
        DelayedCalls_++;
        DelaysEnd_.wait_for(lock, std::chrono::duration<double>(verdict.Delay), cleared);
        DelayedCalls_--;
    }
    return verdict;
}

const Server* World::FindServer(uint32_t address) const {
    for (const Server& server : Current_->Servers) {
        if (server.Address == address) return &server;
    }
    return nullptr;
}

std::shared_ptr<CrateState> World::FindCrate(const Server& server, const std::string& serial) const {
    for (const Crate& crate : server.Crates) {
        if (crate.Serial != serial) continue;
        for (const auto& state : Crates_) {
            if (&state->Definition == &crate) return state;
        }
    }
    return nullptr;
}

int32_t World::OpenModule(uint32_t address, const std::string& crateSerial, uint32_t slot, uint32_t& id) {
    const std::scoped_lock lock(Mutex_);
    const Server* server = FindServer(address);
    if (!server) return NoServer;
    const std::shared_ptr<CrateState> crate = FindCrate(*server, crateSerial);
    if (!crate) return NoCrate;
    for (const Module& module : crate->Definition.Modules) {
        if (module.Slot != slot) continue;
        if (module.Id != Ltr27Id) return OtherModule;
        const auto connection = std::make_shared<ModuleConnection>(module);
        connection->Installation = Current_;
        connection->Crate = crate;
        connection->Where = {address, crateSerial, slot};
        id = ++LastId_;
        Modules_[id] = connection;
        return Success;
    }
    return NoModule;
}

int32_t World::OpenLink(uint32_t address, const std::string& crateSerial, uint32_t& id, uint32_t& timeMark) {
    const std::scoped_lock lock(Mutex_);
    const Server* server = FindServer(address);
    if (!server) return NoServer;
    const auto link = std::make_shared<CrateLink>();
    const Clock::time_point now = Clock::now();
    if (!crateSerial.empty()) {
        link->Crate = FindCrate(*server, crateSerial);
        if (!link->Crate) return NoCrate;
        timeMark = link->Crate->Marks(now) << 16 | (static_cast<uint32_t>(Elapsed(now)) & 0xFFFF);
    }
    link->Installation = Current_;
    link->Lists = server;
    link->Where = {address, crateSerial, 0};
    id = ++LastId_;
    Links_[id] = link;
    return Success;
}

std::shared_ptr<ModuleConnection> World::FindModule(uint32_t id) {
    const std::scoped_lock lock(Mutex_);
    const auto found = Modules_.find(id);
    return found == Modules_.end() ? nullptr : found->second;
}

std::shared_ptr<CrateLink> World::FindLink(uint32_t id) {
    const std::scoped_lock lock(Mutex_);
    const auto found = Links_.find(id);
    return found == Links_.end() ? nullptr : found->second;
}

void World::CloseModule(uint32_t id) {
    const std::scoped_lock lock(Mutex_);
    Modules_.erase(id);
}

void World::CloseLink(uint32_t id) {
    const std::scoped_lock lock(Mutex_);
    Links_.erase(id);
}

void World::StartModule(ModuleConnection& module, double rate) {
    const std::scoped_lock lock(Mutex_);
    const Clock::time_point now = Clock::now();
    module.Stream.Start({rate, module.Installation->Speed, now, module.Installation->Speed == 0 ? 0 : Elapsed(now),
                         module.Crate->Marks(now)});
    if (module.Crate->Pending(now)) module.Stream.AddMarkAt(*module.Crate->LastMark);
}

void World::DropPendingMark(CrateState& crate, Clock::time_point now) {
    if (!crate.Pending(now)) return;
    for (const auto& [id, module] : Modules_) {
        if (module->Crate.get() == &crate) module->Stream.DropMarkAt(*crate.LastMark);
    }
    crate.LastMark.reset();
}

// A crate has one source of START marks: a request replaces an earlier one whose mark has not come yet.
void World::RequestStartMark(const CrateLink& link, int32_t mode) {
    const std::scoped_lock lock(Mutex_);
    MarkMode_ = mode;
    const Clock::time_point now = Clock::now();
    DropPendingMark(*link.Crate, now);
    const Crate& crate = link.Crate->Definition;
    const bool atOnce = crate.Marks == StartMarks::AtOnce || mode == InternalMark;
    if (crate.Marks == StartMarks::Never || (!atOnce && !crate.StartMarkAfter)) return;
    const double seconds = atOnce ? 0 : *crate.StartMarkAfter;
    // Without real time the crate counts the mark at once, and in each stream it appears at a kadr of its own.
    const bool timeless = link.Installation->Speed == 0;
    const auto ahead = std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(seconds));
    const Clock::time_point moment = timeless ? now : now + ahead;
    link.Crate->EarlierMarks = link.Crate->Marks(now);
    link.Crate->LastMark = moment;
    for (const auto& [id, module] : Modules_) {
        if (module->Crate != link.Crate) continue;
        timeless ? module->Stream.AddMarkAfter(crate.StartMarkKadr, seconds) : module->Stream.AddMarkAt(moment);
    }
}

void World::RememberConfig(const corvane::CrateConfig& config) {
    const std::scoped_lock lock(Mutex_);
    ConfigWords_.resize(sizeof(config) / sizeof(uint16_t));
    std::memcpy(ConfigWords_.data(), &config, sizeof(config));
}

bool World::Refuse(const char* reason) {
    LastFailure_ = reason;
    return false;
}

bool World::Configure(const char* tomlText) {
    const bool own = tomlText && *tomlText;
    const std::scoped_lock lock(Mutex_);
    try {
        Set(own ? ReadScenario(tomlText, "scenario") : ReadScenario(DefaultScenario, "built-in scenario"));
        Loaded_ = true;
        return true;
    } catch (const ScenarioError& error) {
        return Refuse(error.what());
    }
}

bool World::AddFault(const char* tomlText) {
    const std::scoped_lock lock(Mutex_);
    LoadOnce();
    try {
        Faults_.Add(ReadFault(tomlText ? tomlText : "", "fault"));
        LastFailure_ = Broken_;
        return true;
    } catch (const ScenarioError& error) {
        return Refuse(error.what());
    }
}

void World::ClearFaults() {
    const std::scoped_lock lock(Mutex_);
    LoadOnce();
    ForgetFaults();
}

void World::ForgetFaults() {
    Faults_.Clear();
    FaultsCleared_++;
    DelaysEnd_.notify_all();
}

const char* World::Message() {
    const std::scoped_lock lock(Mutex_);
    return Lasting(LastFailure_.empty() ? FirstViolation_ : LastFailure_);
}

const char* World::BrokenReason() {
    const std::scoped_lock lock(Mutex_);
    return Broken_.empty() ? nullptr : Lasting(Broken_);
}

int32_t World::Violations() {
    const std::scoped_lock lock(Mutex_);
    return ViolationCount_;
}

int32_t World::Calls(std::string_view function) {
    const std::scoped_lock lock(Mutex_);
    const auto count = CallCounts_.find(function);
    return count == CallCounts_.end() ? 0 : count->second;
}

int32_t World::DelayedCalls() {
    const std::scoped_lock lock(Mutex_);
    return DelayedCalls_;
}

int32_t World::OpenConnections() {
    const std::scoped_lock lock(Mutex_);
    return static_cast<int32_t>(Modules_.size() + Links_.size());
}

int32_t World::RunningModules() {
    const std::scoped_lock lock(Mutex_);
    return static_cast<int32_t>(std::count_if(Modules_.begin(), Modules_.end(),
                                              [](const auto& entry) { return entry.second->Stream.Running(); }));
}

int32_t World::LastMarkMode() {
    const std::scoped_lock lock(Mutex_);
    return MarkMode_;
}

int32_t World::LastConfigWord(int32_t index) {
    const std::scoped_lock lock(Mutex_);
    return index >= 0 && static_cast<size_t>(index) < ConfigWords_.size() ? ConfigWords_[static_cast<size_t>(index)]
                                                                          : -1;
}

double World::ExpectedCode(int32_t slot, int32_t channel, int64_t kadr, double rate) {
    const std::scoped_lock lock(Mutex_);
    LoadOnce();
    const bool sane = channel >= 0 && channel < corvane::ModuleChannels && kadr >= 0 && rate > 0;
    if (sane && !Crates_.empty()) {
        for (const Module& module : Crates_.front()->Definition.Modules) {
            if (static_cast<int32_t>(module.Slot) != slot) continue;
            return ModuleSource(module).Code(static_cast<size_t>(channel), kadr, rate);
        }
    }
    return std::numeric_limits<double>::quiet_NaN();
}

}  // namespace ltrsim
