// Random simulated crates and random faults.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <random>
#include <string>

namespace corvane::soak {

// The same seed gives the same numbers on every machine.
class Chance {
public:
    explicit Chance(uint64_t seed) : Numbers_(seed) {}
    int64_t Below(int64_t count) { return static_cast<int64_t>(Numbers_() % static_cast<uint64_t>(count)); }
    int64_t From(int64_t low, int64_t high) { return low + Below(high - low + 1); }
    bool OneIn(int64_t count) { return Below(count) == 0; }

    template <class Value>
    Value Of(std::initializer_list<Value> values) {
        return values.begin()[Below(static_cast<int64_t>(values.size()))];
    }

private:
    std::mt19937_64 Numbers_;
};

struct Installation {
    std::string Scenario;   // its modules number their kadrs
    bool HasMarks = false;  // a START mark that the crate makes itself comes
};

constexpr const char* FirstCrate = "CRATE1";  // every installation has it

Installation RandomInstallation(Chance& chance);
std::string RandomFault(Chance& chance);

}  // namespace corvane::soak
