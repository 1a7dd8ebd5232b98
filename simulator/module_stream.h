// The conversion stream of one opened module: when its words are available, what they hold, and which time mark they
// carry.
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <vector>

#include "simulator/signal.h"

namespace ltrsim {

using Clock = std::chrono::steady_clock;

// How and when a stream starts.
struct StreamStart {
    double Rate = 0;   // Hz
    double Speed = 0;  // as Scenario::Speed
    Clock::time_point Begin;
    double CrateSeconds = 0;  // the crate's count of seconds at Begin
    uint32_t StartMarks = 0;  // START marks that the crate has counted by then
};

// Safe from any thread; a waiting Receive holds no lock.
class ModuleStream {
public:
    explicit ModuleStream(const Module& module) : Source_(module) {}

    void Start(const StreamStart& start);
    void Stop();
    bool Running() const;
    // Wakes a waiting Receive and ends the stream for good.
    void Abandon();

    // The kadrs sampled after `moment` carry one START mark more. Ignored while stopped and at speed 0.
    void AddMarkAt(Clock::time_point moment);
    // Undoes one AddMarkAt of the same moment.
    void DropMarkAt(Clock::time_point moment);
    // As AddMarkAt, but from the kadr on that comes `kadrs` kadrs and `seconds` of sampled time after the next one to
    // be delivered. Also at speed 0.
    void AddMarkAfter(int64_t kadrs, double seconds);

    // Waits up to `timeoutMs` (at most a minute) for `count` words; delivers what is available and returns how many
    // words that are. `marks` may be null.
    uint32_t Receive(uint32_t* words, uint32_t* marks, uint32_t count, uint32_t timeoutMs);
    // As Receive, but delivers nothing.
    void WaitInVain(uint32_t timeoutMs);

private:
    int64_t WordsThere(Clock::time_point now) const;
    int64_t KadrAt(Clock::time_point moment) const;
    Clock::time_point MomentOf(int64_t words) const;
    uint32_t MarkOf(int64_t kadr) const;
    void Deliver(uint32_t* words, uint32_t* marks, uint32_t count);

    const ModuleSource Source_;
    mutable std::mutex Mutex_;  // guards all that follows
    std::condition_variable Changed_;
    bool Runs_ = false;
    bool Abandoned_ = false;
    StreamStart Begun_;
    int64_t NextWord_ = 0;            // words delivered since the start
    std::vector<int64_t> MarkKadrs_;  // the kadr from which on one more START mark counts
};

}  // namespace ltrsim
