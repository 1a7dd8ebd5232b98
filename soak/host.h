// A host that does anything at any time, on a thread of its own: it calls members with senseless arguments, starts,
// stops, dawdles, makes and releases objects, and meets faults and shortages of memory. What it does follows from its
// seed alone, whatever the driver answers.
#pragma once

#include <chrono>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "driver/driver_object.h"
#include "soak/installation.h"
#include "soak/kadr_check.h"

namespace corvane::soak {

struct Tally {
    int64_t Steps = 0, Recordings = 0, Faults = 0, Shortages = 0;
    int64_t Delivered = 0;                        // kadrs
    int64_t Compared = 0, Listed = 0, Wrong = 0;  // kadrs of one module, as KadrCheck counts them
    void Add(const Tally& other);
};

class Host {
public:
    explicit Host(uint64_t seed) : Chance_(seed) {}

    // Takes so many steps, then releases its objects; ends early with the first broken promise.
    void Run(int64_t steps);
    // Records undisturbed: every kadr must come, and none may be listed.
    void RunWhole();

    const Tally& Counts() const { return Counts_; }
    // The first broken promise and the steps that led to it; empty: none.
    const std::string& Broken() const { return Broken_; }

private:
    struct Action {
        const char* Name;
        int64_t Weight;
        void (Host::*Do)();
        double Limit = 10;  // s, on a busy machine
    };
    static const Action Actions[];

    const Action& RandomAction();
    void Step(const Action& action);
    DriverObject& Any();  // one of the objects
    // Calls the driver, now and then with memory that runs out meanwhile. False when the call could not be made whole.
    bool Call(const std::function<void()>& call);
    void Expect(bool promise, const std::string& what);
    void CheckState();
    void CheckGaps();
    void EndCheck();  // counts what the recording's check has seen
    void Take(const int16_t* kadrs, int64_t first, int64_t count);

    void Create();
    void Release();
    void Test();
    void Start();
    void Stop();
    void Read();
    void ReadOnce(DriverObject& driver, std::vector<int16_t>& samples);
    void ReadInputData();
    void Dawdle();
    void SelectChannels();
    void SetRate();
    void SetSize();
    void AskAnything();
    void ReadNow();
    void ChooseDevice();
    void SetMarkMode();
    void AddFault();
    void ClearFaults();

    Chance Chance_;
    Tally Counts_;
    std::string Broken_;
    std::deque<std::string> Trail_;  // the last steps
    std::vector<std::unique_ptr<DriverObject>> Objects_;
    std::optional<KadrCheck> Check_;  // of the recording in the ring
    int64_t Recorded_ = 0;            // kadrs, as last seen
    bool MemoryLasts_ = false;        // no call runs out of it
};

}  // namespace corvane::soak
