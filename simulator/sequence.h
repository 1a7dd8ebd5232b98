// Simulated crates whose modules number their kadrs, and the check of such numbers, for tests on every platform.
#pragma once

#include <cstdint>
#include <numeric>
#include <string>
#include <vector>

namespace corvane {

inline std::string Server(const std::string& address) {
    return "[[server]]\naddress = \"" + address + "\"\n";
}

// A crate of the server before it, with LTR27 modules in these slots; every position but the last numbers its kadrs.
inline std::string Crate(const std::string& serial, const std::vector<int>& slots, const std::string& crateKeys = "") {
    std::string toml = "[[server.crate]]\nserial = \"" + serial + "\"\n" + crateKeys + "\n";
    for (const int slot : slots) {
        toml +=
            "[[server.crate.module]]\nid = \"LTR27\"\nslot = " + std::to_string(slot) + "\nfirmware = \"1.2.3.4\"\n";
        for (int position = 1; position < 8; position++) {
            toml += "[[server.crate.module.mezzanine]]\nposition = " + std::to_string(position) +
                    "\nname = \"SEQ\"\nunit = \"В\"\nbottom = -10\ntop = 10\nsignal = { kind = \"sequence\" }\n";
        }
    }
    return toml;
}

// A local server with one crate.
inline std::string SequenceCrate(const std::vector<int>& slots, const std::string& speed,
                                 const std::string& crateKeys = "") {
    return "speed = " + speed + "\n" + Server("127.0.0.1") + Crate("CRATE1", slots, crateKeys);
}

inline std::vector<int16_t> FirstChannels(int count) {
    std::vector<int16_t> channels(static_cast<size_t>(count));
    std::iota(channels.begin(), channels.end(), int16_t{0});
    return channels;
}

// Follows the kadr numbers in whole kadrs of the first `modules` modules, all 16 channels each: the even channel of a
// mezzanine counts modulo 32768, the odd one the rounds.
class SequenceCheck {
public:
    explicit SequenceCheck(size_t modules) : Next_(modules, -1) {}

    void Take(const int16_t* kadrs, int32_t count) {
        for (int32_t kadr = 0; kadr < count; kadr++, Kadrs_++) {
            for (size_t module = 0; module < Next_.size(); module++, kadrs += 16) TakeModule(module, kadrs);
        }
    }
    int64_t Kadrs() const { return Kadrs_; }
    // Number that the module has to show next; -1: any.
    int64_t Next(size_t module) const { return Next_[module]; }
    // The first kadr that was lost, repeated, out of order or different between mezzanines; empty: none.
    const std::string& Fault() const { return Fault_; }

private:
    void TakeModule(size_t module, const int16_t* samples) {
        for (size_t channel = 0; channel < 14; channel += 2) {
            const int64_t number = int64_t{samples[channel + 1] + 16384} * 32768 + samples[channel] + 16384;
            if (Next_[module] < 0) Next_[module] = number;
            if (number == Next_[module] || !Fault_.empty()) continue;
            Fault_ = "kadr " + std::to_string(Kadrs_) + ", channel " + std::to_string(module * 16 + channel) +
                     ": number " + std::to_string(number) + " instead of " + std::to_string(Next_[module]);
        }
        Next_[module]++;
    }

    std::vector<int64_t> Next_;
    int64_t Kadrs_ = 0;
    std::string Fault_;
};

}  // namespace corvane
