#include "soak/host.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <new>
#include <thread>
#include <utility>

#include "driver/lifecycle.h"
#include "simulator/control.h"
#include "simulator/sequence.h"
#include "standins/short_memory.h"

namespace corvane::soak {

namespace {

using Clock = std::chrono::steady_clock;

double SecondsSince(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
}

int16_t AnyInt16(Chance& chance) {
    return static_cast<int16_t>(chance.OneIn(3) ? chance.From(INT16_MIN, INT16_MAX) : chance.From(-2, 34));
}

}  // namespace

const Host::Action Host::Actions[] = {{"create", 4, &Host::Create},
                                      {"release", 3, &Host::Release},
                                      {"test", 6, &Host::Test},
                                      {"start", 12, &Host::Start},
                                      {"stop", 8, &Host::Stop, 4},
                                      {"read", 40, &Host::Read, 1},
                                      {"input data", 8, &Host::ReadInputData, 1},
                                      {"dawdle", 12, &Host::Dawdle},
                                      {"channels", 4, &Host::SelectChannels, 1},
                                      {"rate", 4, &Host::SetRate, 1},
                                      {"size", 3, &Host::SetSize, 1},
                                      {"ask", 8, &Host::AskAnything, 1},
                                      {"read now", 3, &Host::ReadNow},
                                      {"choose", 2, &Host::ChooseDevice, 1},
                                      {"mark mode", 2, &Host::SetMarkMode, 1},
                                      {"fault", 10, &Host::AddFault},
                                      {"clear faults", 4, &Host::ClearFaults}};

void Tally::Add(const Tally& other) {
    Steps += other.Steps;
    Recordings += other.Recordings;
    Faults += other.Faults;
    Shortages += other.Shortages;
    Delivered += other.Delivered;
    Compared += other.Compared;
    Listed += other.Listed;
    Wrong += other.Wrong;
}

void Host::Run(int64_t steps) {
    Create();
    for (int64_t step = 0; step < steps && Broken_.empty(); step++) Step(RandomAction());
    while (!Objects_.empty()) Step({"release", 0, &Host::Release});
}

void Host::RunWhole() {
    MemoryLasts_ = true;
    Create();
    Any().SetCrateSerial(FirstCrate);
    Expect(Any().Test(), "the device is back, but can't be opened: " + Any().LastError());
    Any().SetRate(1000);
    DriverState& state = AttachObject();
    state.Crate.MarkSTARTMode = 0;  // made by the crate itself
    DetachObject(state);
    Start();
    Expect(Any().Busy(), "the device is back, but does not record: " + Any().LastError());
    const auto start = Clock::now();
    while (Broken_.empty() && Check_->Kadrs < 200) {
        Read();
        Expect(SecondsSince(start) < 10, "no data comes");
    }
    Any().StopRecord();
    Expect(Any().Gaps().empty(), "the device is back, but kadrs are missing");
    CheckState();
    Release();
}

const Host::Action& Host::RandomAction() {
    int64_t weights = 0;
    for (const Action& action : Actions) weights += action.Weight;
    int64_t at = Chance_.Below(weights);
    const Action* chosen = Actions;
    while (at >= chosen->Weight) at -= (chosen++)->Weight;
    return *chosen;
}

void Host::Step(const Action& action) {
    Trail_.push_back(action.Name);
    if (Trail_.size() > 40) Trail_.pop_front();
    Counts_.Steps++;
    const auto start = Clock::now();
    if (!Objects_.empty() || action.Do == &Host::Create || action.Do == &Host::AddFault) (this->*action.Do)();
    const double took = SecondsSince(start);
    Expect(took < action.Limit, std::string(action.Name) + " took " + std::to_string(took) + " s");
    if (!Objects_.empty()) CheckState();
}

DriverObject& Host::Any() {
    return *Objects_[static_cast<size_t>(Chance_.Below(static_cast<int64_t>(Objects_.size())))];
}

bool Host::Call(const std::function<void()>& call) {
    const bool runsOut = !MemoryLasts_ && Chance_.OneIn(4);
    FailingAllocation = runsOut ? static_cast<int>(Chance_.From(1, 60)) : 0;
    bool whole = true;
    try {
        call();
    } catch (const std::bad_alloc&) {
        whole = false;
    }
    const bool failed = runsOut && std::exchange(FailingAllocation, 0) == 0;
    if (failed) {
        Counts_.Shortages++;
        Trail_.push_back("  out of memory");
    }
    Expect(whole || failed, "out of memory");
    return whole;
}

void Host::Expect(bool promise, const std::string& what) {
    if (promise || !Broken_.empty()) return;
    Broken_ = what + "\nsteps:";
    for (const std::string& step : Trail_) Broken_ += "\n  " + step;
}

// What holds after every step, whatever went before.
void Host::CheckState() {
    const DriverObject& driver = *Objects_.front();
    Expect(LtrSim_Violations() == 0, std::string("a call that no correct driver makes: ") + LtrSim_Message());
    const std::vector<int16_t> table = driver.InputChannels();
    const int16_t channels = driver.ChannelsCount();
    Expect(channels == 16 || channels == 32, "the number of channels");
    Expect(!table.empty() && table.front() >= 0 && table.back() < channels, "the table's channels");
    Expect(std::ranges::adjacent_find(table, std::greater_equal()) == table.end(), "the table's order");
    Expect(driver.InputCountChannels() == static_cast<int16_t>(table.size()), "the table's length");
    Expect(driver.BasePort() == -1 || !driver.Detected(), "the last opening");
    const int64_t recorded = driver.KadrsRecorded();
    Expect(recorded >= Recorded_ && driver.KadrsRead() <= recorded, "the counters of kadrs");
    Recorded_ = recorded;
    CheckGaps();
    if (Check_) Expect(Check_->Wrong == 0, Check_->Fault);
    for (const auto& object : Objects_) {
        Expect(object->InputChannels() == table && object->Detected() == driver.Detected(), "objects differ");
    }
}

void Host::CheckGaps() {
    int64_t end[2] = {};
    for (const Gap& gap : Objects_.front()->Gaps()) {
        const bool known = gap.Module >= 0 && gap.Module < 2;
        Expect(known && gap.Kadrs > 0 && gap.First >= end[known ? gap.Module : 0], "the order of the gaps");
        if (known) end[gap.Module] = gap.First + gap.Kadrs;
    }
}

void Host::EndCheck() {
    if (!Check_) return;
    Counts_.Delivered += Check_->Kadrs;
    Counts_.Compared += Check_->Compared;
    Counts_.Listed += Check_->Listed;
    Counts_.Wrong += Check_->Wrong;
    Check_.reset();
}

void Host::Take(const int16_t* kadrs, int64_t first, int64_t count) {
    if (count == 0) return;
    Expect(Check_.has_value(), "kadrs without a recording");
    if (Check_) Check_->Take(kadrs, first, count, Objects_.front()->Gaps());
}

void Host::Create() {
    if (Objects_.size() == 3) return;
    if (Objects_.empty()) Recorded_ = 0;
    std::unique_ptr<DriverObject> made;
    if (!Call([&] { made = std::make_unique<DriverObject>(); })) return;
    Objects_.push_back(std::move(made));
    Objects_.back()->SetInteractive(false);
}

void Host::Release() {
    const auto released = Chance_.Below(static_cast<int64_t>(Objects_.size()));
    std::unique_ptr<DriverObject> object = std::move(Objects_[static_cast<size_t>(released)]);
    Objects_.erase(Objects_.begin() + released);
    Call([&] { object.reset(); });
    if (Objects_.empty()) EndCheck();
}

void Host::Test() {
    DriverObject& driver = Any();
    driver.SetCrateSerial(Chance_.OneIn(5) ? "" : FirstCrate);
    Call([&] { Expect(driver.Test() == driver.Detected(), "what Test answers"); });
}

// The check needs one channel of each module that counts its kadrs.
void Host::Start() {
    DriverObject& driver = Any();
    std::vector<int16_t> table = driver.InputChannels();
    const int64_t even[2] = {2 * Chance_.Below(7), 16 + 2 * Chance_.Below(7)};
    for (const int16_t first : {int16_t{0}, int16_t{16}}) {
        const auto own = [&](int16_t channel) { return channel / 16 == first / 16; };
        if (std::ranges::any_of(table, own)) table.push_back(static_cast<int16_t>(even[first / 16]));
    }
    if (!Call([&] { driver.SetInputChannels(table); })) return;
    const bool busy = driver.Busy(), detected = driver.Detected();
    bool started = false;
    Call([&] { started = driver.StartRecord(); });
    Expect(!started || (!busy && detected && driver.Busy()), "a start that can't be");
    if (busy || !detected || (!started && driver.KadrsRecorded() > 0)) return;
    EndCheck();
    Check_.emplace(driver.InputChannels());
    Recorded_ = 0;
    Counts_.Recordings += started ? 1 : 0;
}

void Host::Stop() {
    DriverObject& driver = Any();
    Call([&] { driver.StopRecord(); });
    Expect(!driver.Busy(), "busy after a stop");
}

void Host::Read() {
    DriverObject& driver = Any();
    std::vector<int16_t> samples(static_cast<size_t>(Chance_.From(1, 60000)));
    const int64_t again = Chance_.OneIn(4) ? Chance_.Below(20) : 0;
    for (int64_t reading = 0; reading <= again && Broken_.empty(); reading++) {
        if (reading > 0) std::this_thread::sleep_for(std::chrono::milliseconds(1));
        ReadOnce(driver, samples);
    }
}

void Host::ReadOnce(DriverObject& driver, std::vector<int16_t>& samples) {
    int32_t count = static_cast<int32_t>(Chance_.OneIn(10) ? -Chance_.Below(100000) : Chance_.Below(60001));
    count = std::min(count, static_cast<int32_t>(samples.size()));
    const int32_t room = count;
    int32_t remaining = -1;
    const int64_t first = driver.KadrsRead();
    const int32_t channels = driver.NextInputData().Channels;
    int32_t kadrs = 0;
    Call([&] { kadrs = driver.GetData(samples.data(), count, remaining); });
    Expect(kadrs >= 0 && remaining >= 0 && (kadrs == 0 || (count == kadrs * channels && count <= room)), "GetData");
    Take(samples.data(), first, kadrs);
}

void Host::ReadInputData() {
    DriverObject& driver = Any();
    const InputDataShape shape = driver.NextInputData();
    std::vector<int16_t> data(static_cast<size_t>(shape.Channels) * static_cast<size_t>(shape.Kadrs + 1));
    const int64_t first = driver.KadrsRead();
    Call([&] { driver.TakeInputData(shape, data.data()); });
    Take(data.data() + shape.Channels, first, shape.Kadrs);
}

void Host::Dawdle() {
    std::this_thread::sleep_for(std::chrono::milliseconds(Chance_.From(0, 20)));
}

void Host::SelectChannels() {
    std::vector<int16_t> table(static_cast<size_t>(Chance_.OneIn(3) ? Chance_.Below(100) : Chance_.Below(5)));
    for (int16_t& channel : table) channel = AnyInt16(Chance_);
    if (Chance_.OneIn(3)) table = FirstChannels(static_cast<int>(Chance_.From(1, 32)));
    Call([&] { Any().SetInputChannels(table); });
}

void Host::SetRate() {
    const float infinity = std::numeric_limits<float>::infinity();
    DriverObject& driver = Any();
    driver.SetRate(Chance_.Of<float>({1000, 1000, 500, 333, 100, 4, 0, -1, 1e30f, infinity, -infinity, std::nanf("")}));
    const float rate = driver.Rate();
    const double divisor = 1000 / double{rate};
    Expect(rate >= 4 && rate <= 1000 && std::abs(divisor - std::round(divisor)) < 1e-3, "the rate");
}

void Host::SetSize() {
    DriverObject& driver = Any();
    driver.SetInputSizeData(Chance_.Of<int32_t>({INT32_MIN, -1, 0, 1023, 1024, 1025, 5000, 32768, 100000, 10000000}));
    Expect(driver.InputSizeKadrs() > 0 && driver.InputSizeData() > 0, "the size of the ring");
}

void Host::AskAnything() {
    DriverObject& driver = Any();
    const int16_t index = AnyInt16(Chance_);
    const bool valid = index >= 0 && index < driver.ChannelsCount();
    driver.SetChannelRange(index, AnyInt16(Chance_));
    Expect(driver.ChannelName(index).empty() != valid, "ChannelName");
    Expect((driver.ChannelUnitScale(index) != 0) == valid, "ChannelUnitScale");
    Expect(driver.ChannelRange(index) == (valid ? index / 2 : 0), "ChannelRange");
    Expect(driver.ChannelUnitOffset(index) == 0, "ChannelUnitOffset");
    Expect(valid || driver.ChannelUnitName(index).empty(), "ChannelUnitName");
    Expect(driver.ModuleInfo(index).empty() == (index < 0 || index >= driver.ModulesCount()), "ModuleInfo");
    Expect(driver.CrateInfo().empty() != driver.Detected(), "CrateInfo");
    Expect(static_cast<int>(driver.Ranges().size()) * 2 == driver.ChannelsCount(), "Ranges");
    Expect(!driver.ShowSetting(), "ShowSetting");
    Expect(driver.InputCountData() % driver.NextInputData().Channels == 0, "InputCountData");
}

void Host::ReadNow() {
    DriverObject& driver = Any();
    Call([&] { driver.GetChannel(AnyInt16(Chance_)); });
    std::vector<int16_t> kadr;
    if (Call([&] { kadr = driver.GetKadr(); })) Expect(kadr.size() == driver.InputChannels().size(), "GetKadr");
}

void Host::ChooseDevice() {
    DriverObject& driver = Any();
    const bool set = driver.SetServer(Chance_.Of<const char*>({"", "127.0.0.1", "10.0.0.7", "1.2.3", "...", "no"}));
    Expect(set || driver.Server() != "no", "Server");
    if (Chance_.OneIn(2)) driver.SetServer("");
}

void Host::SetMarkMode() {
    DriverState& state = AttachObject();
    state.Crate.MarkSTARTMode = static_cast<int16_t>(Chance_.Below(8));
    DetachObject(state);
}

void Host::AddFault() {
    const std::string fault = RandomFault(Chance_);
    Trail_.back() += ": " + fault;
    Counts_.Faults++;
    Expect(LtrSim_AddFault(fault.c_str()) == 0, "the simulator refuses a fault: " + fault);
}

void Host::ClearFaults() {
    LtrSim_ClearFaults();
}

}  // namespace corvane::soak
