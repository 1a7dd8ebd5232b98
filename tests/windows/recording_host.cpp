#include "tests/windows/recording_host.h"

#include <numeric>

namespace corvane::test {

std::string SequenceScenario(int modules) {
    std::string text = "speed = 0\n[[server]]\naddress = \"127.0.0.1\"\n[[server.crate]]\nserial = \"3T000001\"\n";
    for (int slot = 1; slot <= modules; slot++) {
        text += "[[server.crate.module]]\nslot = " + std::to_string(slot) + "\nid = \"LTR27\"\n";
        for (int position = 1; position <= 8; position++) {
            text += "[[server.crate.module.mezzanine]]\nposition = " + std::to_string(position) +
                    "\nname = \"H-27U\"\nunit = \"V\"\nbottom = -10\ntop = 10\nsignal = { kind = \"sequence\" }\n";
        }
    }
    return text;
}

void SequenceCheck::Take(const short* kadrs, LONG count) {
    for (LONG kadr = 0; kadr < count; kadr++, Kadrs_++) {
        for (size_t module = 0; module < Next_.size(); module++) {
            TakeModule(module, kadrs + (static_cast<size_t>(kadr) * Next_.size() + module) * 16);
        }
    }
}

void SequenceCheck::TakeModule(size_t module, const short* samples) {
    for (size_t channel = 0; channel < 16; channel += 2) {
        const LONG number = (samples[channel + 1] + 16384) * 32768 + samples[channel] + 16384;
        if (channel == 0 && Next_[module] < 0) Next_[module] = number;
        if (number != Next_[module] && Fault_.empty()) {
            Fault_ = "kadr " + std::to_string(Kadrs_) + ", module " + std::to_string(module) + ", channel " +
                     std::to_string(channel) + ": number " + std::to_string(number) + " instead of " +
                     std::to_string(Next_[module]);
        }
    }
    Next_[module]++;
}

void DriverTest::SetUp() {
    ASSERT_EQ(0, LtrSim_Configure(SequenceScenario(2).c_str())) << LtrSim_Message();
    Driver = CreateDriver();
    ASSERT_NE(nullptr, Driver);
}

void DriverTest::TearDown() {
    LtrSim_ClearFaults();
    Driver.Reset();
    EXPECT_EQ(0, LtrSim_RunningModules());
    EXPECT_EQ(0, LtrSim_OpenConnections());
    EXPECT_EQ(0, LtrSim_Violations()) << LtrSim_Message();
}

bool DriverTest::OpenSequence(int modules) {
    EXPECT_EQ(0, LtrSim_Configure(SequenceScenario(modules).c_str())) << LtrSim_Message();
    if (!True(Driver.Get(), &IADC3::Test)) return false;
    SelectChannels(Driver.Get(), FirstChannels(16 * modules));
    return true;
}

bool DriverTest::Start(float rate) {
    EXPECT_EQ(S_OK, Driver->put_Rate(rate));
    return True(Driver.Get(), &IADC3::StartRecord);
}

bool DriverTest::WaitForKadrs(LONG kadrs) {
    return WaitFor([&] { return Read(Driver.Get(), &IADC3::get_InputCountKadrs) >= kadrs; }, 5000);
}

std::vector<short> FirstChannels(int count) {
    std::vector<short> channels(static_cast<size_t>(count));
    std::iota(channels.begin(), channels.end(), short{0});
    return channels;
}

}  // namespace corvane::test
