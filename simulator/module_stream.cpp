#include "simulator/module_stream.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace ltrsim {

namespace {

constexpr uint32_t KadrWords = corvane::ModuleChannels;
constexpr std::chrono::milliseconds LongestWait{60000};  // no driver waits longer; a simulation must end

Clock::duration Seconds(double seconds) {
    return std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(seconds));
}

Clock::time_point Deadline(uint32_t timeoutMs) {
    return Clock::now() + std::min<std::chrono::milliseconds>(std::chrono::milliseconds(timeoutMs), LongestWait);
}

}  // namespace

void ModuleStream::Start(const StreamStart& start) {
    const std::scoped_lock lock(Mutex_);
    Begun_ = start;
    NextWord_ = 0;
    MarkKadrs_.clear();
    Runs_ = true;
}

void ModuleStream::Stop() {
    const std::scoped_lock lock(Mutex_);
    Runs_ = false;
    Changed_.notify_all();
}

bool ModuleStream::Running() const {
    const std::scoped_lock lock(Mutex_);
    return Runs_;
}

void ModuleStream::Abandon() {
    const std::scoped_lock lock(Mutex_);
    Runs_ = false;
    Abandoned_ = true;
    Changed_.notify_all();
}

void ModuleStream::AddMarkAt(Clock::time_point moment) {
    const std::scoped_lock lock(Mutex_);
    if (!Runs_ || Begun_.Speed == 0) return;
    MarkKadrs_.push_back(KadrAt(moment));
}

void ModuleStream::DropMarkAt(Clock::time_point moment) {
    const std::scoped_lock lock(Mutex_);
    if (!Runs_ || Begun_.Speed == 0) return;
    const auto mark = std::find(MarkKadrs_.begin(), MarkKadrs_.end(), KadrAt(moment));
    if (mark != MarkKadrs_.end()) MarkKadrs_.erase(mark);
}

void ModuleStream::AddMarkAfter(int64_t kadrs, double seconds) {
    const std::scoped_lock lock(Mutex_);
    if (!Runs_) return;
    const int64_t nextKadr = (NextWord_ + KadrWords - 1) / KadrWords;
    MarkKadrs_.push_back(nextKadr + kadrs + static_cast<int64_t>(std::ceil(seconds * Begun_.Rate)));
}

// Kadr k is available once it has been sampled, (k + 1) periods after the start.
int64_t ModuleStream::WordsThere(Clock::time_point now) const {
    if (!Runs_) return 0;
    if (Begun_.Speed == 0) return std::numeric_limits<int64_t>::max();
    const double elapsed = std::chrono::duration<double>(now - Begun_.Begin).count();
    return static_cast<int64_t>(elapsed * Begun_.Rate * Begun_.Speed) * KadrWords - NextWord_;
}

int64_t ModuleStream::KadrAt(Clock::time_point moment) const {
    const double kadrs = std::chrono::duration<double>(moment - Begun_.Begin).count() * Begun_.Rate * Begun_.Speed;
    return static_cast<int64_t>(std::max(kadrs, 0.0));
}

Clock::time_point ModuleStream::MomentOf(int64_t words) const {
    const int64_t kadrs = (words + KadrWords - 1) / KadrWords;
    // A little later, so that rounding never makes a waiter wake up one kadr early.
    return Begun_.Begin + Seconds(static_cast<double>(kadrs) / (Begun_.Rate * Begun_.Speed)) +
           std::chrono::microseconds(50);
}

uint32_t ModuleStream::MarkOf(int64_t kadr) const {
    const double perSecond = Begun_.Speed == 0 ? Begun_.Rate : Begun_.Rate * Begun_.Speed;
    const double seconds = Begun_.CrateSeconds + static_cast<double>(kadr + 1) / perSecond;
    uint32_t starts = Begun_.StartMarks;
    for (const int64_t first : MarkKadrs_) starts += first <= kadr ? 1u : 0u;
    return starts << 16 | (static_cast<uint32_t>(static_cast<int64_t>(seconds)) & 0xFFFF);
}

void ModuleStream::Deliver(uint32_t* words, uint32_t* marks, uint32_t count) {
    for (uint32_t done = 0; done < count;) {
        const int64_t kadr = NextWord_ / KadrWords;
        const uint32_t skip = static_cast<uint32_t>(NextWord_ % KadrWords);
        const uint32_t left = count - done;
        uint32_t taken = left / KadrWords * KadrWords;
        if (skip == 0 && taken != 0) {
            Source_.FillKadrs(kadr, taken / KadrWords, Begun_.Rate, words + done);
        } else {
            uint32_t whole[KadrWords];
            Source_.FillKadrs(kadr, 1, Begun_.Rate, whole);
            taken = std::min(left, KadrWords - skip);
            std::copy_n(whole + skip, taken, words + done);
        }
        for (uint32_t at = 0; marks && at < taken;) {
            const uint32_t same = std::min(taken - at, KadrWords - (at == 0 ? skip : 0));
            std::fill_n(marks + done + at, same, MarkOf((NextWord_ + at) / KadrWords));
            at += same;
        }
        NextWord_ += taken;
        done += taken;
    }
}

uint32_t ModuleStream::Receive(uint32_t* words, uint32_t* marks, uint32_t count, uint32_t timeoutMs) {
    const Clock::time_point deadline = Deadline(timeoutMs);
    std::unique_lock lock(Mutex_);
    for (;;) {
        const Clock::time_point now = Clock::now();
        const int64_t there = WordsThere(now);
        if (there >= count || now >= deadline || Abandoned_) {
            const uint32_t taken = static_cast<uint32_t>(std::clamp<int64_t>(there, 0, count));
            Deliver(words, marks, taken);
            return taken;
        }
        Changed_.wait_until(lock, Runs_ ? std::min(deadline, MomentOf(NextWord_ + count)) : deadline);
    }
}

void ModuleStream::WaitInVain(uint32_t timeoutMs) {
    std::unique_lock lock(Mutex_);
    Changed_.wait_until(lock, Deadline(timeoutMs), [this] { return Abandoned_; });
}

}  // namespace ltrsim
