#include "simulator/world.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <limits>
#include <thread>

#include "simulator/error_codes.h"

namespace ltrsim {

namespace {

constexpr int32_t InternalMark = 5;  // mark mode in which the crate makes the START mark itself

}  // namespace

World& World::Instance() {
    // Never destroyed: at the end of the process another thread may still be inside a call.
    static World& world = *new World;
    return world;
}

void World::LoadOnce() {
    if (Loaded) return;
    Loaded = true;
    std::string path;
    try {
        const std::optional<std::string> text = LoadScenarioFile(path);
        Set(text ? ReadScenario(*text, path) : ReadScenario(DefaultScenario, "built-in scenario"));
    } catch (const std::exception& error) {
        Set(Scenario());
        Broken = LastFailure = error.what();
        std::fprintf(stderr, "ltrsim: %s\n", error.what());
    }
}

void World::Set(Scenario scenario) {
    for (const auto& [id, module] : Modules) module->Stream.Abandon();
    Modules.clear();
    Links.clear();
    CallCounts.clear();
    ViolationCount = 0;
    FirstViolation.clear();
    LastFailure.clear();
    Broken.clear();
    MarkMode = -1;
    ConfigWords.clear();
    Current = std::make_shared<const Scenario>(std::move(scenario));
    Crates.clear();
    for (const Server& server : Current->Servers) {
        for (const Crate& crate : server.Crates) Crates.push_back(std::make_shared<CrateState>(CrateState{crate}));
    }
    Faults.Replace(Current->Faults);
    Begin = Clock::now();
}

bool World::Enter(std::string_view function) {
    const std::scoped_lock lock(Mutex);
    LoadOnce();
    auto count = CallCounts.find(function);
    if (count == CallCounts.end()) count = CallCounts.emplace(function, 0).first;
    ++count->second;
    return Broken.empty();
}

int32_t World::Violation(std::string_view function, std::string_view reason, int32_t code) {
    const std::string text = std::string(function) + ": " + std::string(reason);
    const std::scoped_lock lock(Mutex);
    std::fprintf(stderr, "ltrsim: violation: %s\n", text.c_str());
    if (ViolationCount++ == 0) FirstViolation = text;
    return code;
}

Verdict World::Judge(std::string_view function, const Target& target) {
    Verdict verdict;
    {
        const std::scoped_lock lock(Mutex);
        verdict = Faults.Judge(function, target, Elapsed(Clock::now()));
    }
    if (verdict.Delay > 0) std::this_thread::sleep_for(std::chrono::duration<double>(verdict.Delay));
    return verdict;
}

const Server* World::FindServer(uint32_t address) const {
    for (const Server& server : Current->Servers) {
        if (server.Address == address) return &server;
    }
    return nullptr;
}

std::shared_ptr<CrateState> World::FindCrate(const Server& server, const std::string& serial) const {
    for (const Crate& crate : server.Crates) {
        if (crate.Serial != serial) continue;
        for (const auto& state : Crates) {
            if (&state->Plan == &crate) return state;
        }
    }
    return nullptr;
}

int32_t World::OpenModule(uint32_t address, const std::string& crateSerial, uint32_t slot, uint32_t& id) {
    const std::scoped_lock lock(Mutex);
    const Server* server = FindServer(address);
    if (!server) return NoServer;
    const std::shared_ptr<CrateState> crate = FindCrate(*server, crateSerial);
    if (!crate) return NoCrate;
    for (const Module& module : crate->Plan.Modules) {
        if (module.Slot != slot) continue;
        if (module.Id != Ltr27Id) return OtherModule;
        const auto connection = std::make_shared<ModuleConnection>(module);
        connection->Plan = Current;
        connection->Crate = crate;
        connection->Where = {address, crateSerial, slot};
        for (double* coefficients : connection->Calibration) coefficients[1] = coefficients[3] = 1;
        id = ++LastId;
        Modules[id] = connection;
        return Success;
    }
    return NoModule;
}

int32_t World::OpenLink(uint32_t address, const std::string& crateSerial, uint32_t& id, uint32_t& timeMark) {
    const std::scoped_lock lock(Mutex);
    const Server* server = FindServer(address);
    if (!server) return NoServer;
    const auto link = std::make_shared<CrateLink>();
    const Clock::time_point now = Clock::now();
    if (!crateSerial.empty()) {
        link->Crate = FindCrate(*server, crateSerial);
        if (!link->Crate) return NoCrate;
        timeMark = StartMarkCount(*link->Crate, now) << 16 | (static_cast<uint32_t>(Elapsed(now)) & 0xFFFF);
    }
    link->Plan = Current;
    link->Lists = server;
    link->Where = {address, crateSerial, 0};
    id = ++LastId;
    Links[id] = link;
    return Success;
}

std::shared_ptr<ModuleConnection> World::FindModule(uint32_t id) {
    const std::scoped_lock lock(Mutex);
    const auto found = Modules.find(id);
    return found == Modules.end() ? nullptr : found->second;
}

std::shared_ptr<CrateLink> World::FindLink(uint32_t id) {
    const std::scoped_lock lock(Mutex);
    const auto found = Links.find(id);
    return found == Links.end() ? nullptr : found->second;
}

void World::CloseModule(uint32_t id) {
    const std::scoped_lock lock(Mutex);
    Modules.erase(id);
}

void World::CloseLink(uint32_t id) {
    const std::scoped_lock lock(Mutex);
    Links.erase(id);
}

uint32_t World::StartMarkCount(const CrateState& crate, Clock::time_point now) {
    return static_cast<uint32_t>(std::count_if(crate.StartMarks.begin(), crate.StartMarks.end(),
                                               [now](Clock::time_point moment) { return moment <= now; }));
}

void World::StartModule(ModuleConnection& module, double rate) {
    const std::scoped_lock lock(Mutex);
    const Clock::time_point now = Clock::now();
    module.Stream.Start({rate, module.Plan->Speed, now, module.Plan->Speed == 0 ? 0 : Elapsed(now),
                         StartMarkCount(*module.Crate, now)});
    for (const Clock::time_point moment : module.Crate->StartMarks) {
        if (moment > now) module.Stream.AddMarkAt(moment);
    }
}

void World::RequestStartMark(const CrateLink& link, int32_t mode) {
    const std::scoped_lock lock(Mutex);
    MarkMode = mode;
    const Crate& plan = link.Crate->Plan;
    const bool atOnce = plan.Marks == StartMarks::AtOnce || mode == InternalMark;
    if (plan.Marks == StartMarks::Never || (!atOnce && !plan.StartMarkAfter)) return;
    const double seconds = atOnce ? 0 : *plan.StartMarkAfter;
    // Without real time the crate counts the mark at once, and each stream shows it at its own kadr.
    const bool timeless = link.Plan->Speed == 0;
    const auto ahead = std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(seconds));
    const Clock::time_point moment = timeless ? Clock::now() : Clock::now() + ahead;
    link.Crate->StartMarks.push_back(moment);
    for (const auto& [id, module] : Modules) {
        if (module->Crate != link.Crate) continue;
        timeless ? module->Stream.AddMarkAfter(plan.StartMarkKadr, seconds) : module->Stream.AddMarkAt(moment);
    }
}

void World::RememberConfig(const corvane::CrateConfig& config) {
    const std::scoped_lock lock(Mutex);
    ConfigWords.resize(sizeof(config) / sizeof(uint16_t));
    std::memcpy(ConfigWords.data(), &config, sizeof(config));
}

bool World::Refuse(const char* reason) {
    LastFailure = reason;
    return false;
}

bool World::Configure(const char* tomlText) {
    const bool own = tomlText && *tomlText;
    const std::scoped_lock lock(Mutex);
    try {
        Set(own ? ReadScenario(tomlText, "scenario") : ReadScenario(DefaultScenario, "built-in scenario"));
        Loaded = true;
        return true;
    } catch (const ScenarioError& error) {
        return Refuse(error.what());
    }
}

bool World::AddFault(const char* tomlText) {
    const std::scoped_lock lock(Mutex);
    LoadOnce();
    try {
        Faults.Add(ReadFault(tomlText ? tomlText : "", "fault"));
        LastFailure = Broken;
        return true;
    } catch (const ScenarioError& error) {
        return Refuse(error.what());
    }
}

void World::ClearFaults() {
    const std::scoped_lock lock(Mutex);
    LoadOnce();
    Faults.Clear();
}

const char* World::Message() {
    const std::scoped_lock lock(Mutex);
    return Keep(LastFailure.empty() ? FirstViolation : LastFailure);
}

const char* World::BrokenReason() {
    const std::scoped_lock lock(Mutex);
    return Broken.empty() ? nullptr : Keep(Broken);
}

int32_t World::Violations() {
    const std::scoped_lock lock(Mutex);
    return ViolationCount;
}

int32_t World::Calls(std::string_view function) {
    const std::scoped_lock lock(Mutex);
    const auto count = CallCounts.find(function);
    return count == CallCounts.end() ? 0 : count->second;
}

int32_t World::OpenConnections() {
    const std::scoped_lock lock(Mutex);
    return static_cast<int32_t>(Modules.size() + Links.size());
}

int32_t World::RunningModules() {
    const std::scoped_lock lock(Mutex);
    return static_cast<int32_t>(std::count_if(Modules.begin(), Modules.end(),
                                              [](const auto& entry) { return entry.second->Stream.Running(); }));
}

int32_t World::LastMarkMode() {
    const std::scoped_lock lock(Mutex);
    return MarkMode;
}

int32_t World::LastConfigWord(int32_t index) {
    const std::scoped_lock lock(Mutex);
    return index >= 0 && static_cast<size_t>(index) < ConfigWords.size() ? ConfigWords[static_cast<size_t>(index)] : -1;
}

double World::ExpectedCode(int32_t slot, int32_t channel, int64_t kadr, double rate) {
    const std::scoped_lock lock(Mutex);
    LoadOnce();
    const bool sane = channel >= 0 && channel < corvane::ModuleChannels && kadr >= 0 && rate > 0;
    if (sane && !Crates.empty()) {
        for (const Module& module : Crates.front()->Plan.Modules) {
            if (static_cast<int32_t>(module.Slot) != slot) continue;
            return ModuleSource(module).Code(static_cast<size_t>(channel), kadr, rate);
        }
    }
    return std::numeric_limits<double>::quiet_NaN();
}

}  // namespace ltrsim
