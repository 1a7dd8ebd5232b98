// A host with a device: the component registered, the simulator's modules behind it, all of whose channels number the
// kadrs.
#pragma once

#include <memory>
#include <string>

#include "simulator/control.h"
#include "tests/windows/com_host.h"

namespace corvane::test {

// One crate with LTR27 modules in slots 1 to `modules`, all of whose mezzanines give the kadr number, as fast as taken.
std::string SequenceScenario(int modules);

// Follows the kadr numbers in whole kadrs of the first `modules` modules, all 16 channels each: the even channel of a
// mezzanine counts modulo 32768, the odd one the rounds.
class SequenceCheck {
public:
    explicit SequenceCheck(size_t modules) : Next_(modules, -1) {}

    void Take(const short* kadrs, LONG count);
    LONG Kadrs() const { return Kadrs_; }
    // The first kadr that was lost, repeated, out of order or different between mezzanines; empty: none.
    const std::string& Fault() const { return Fault_; }

private:
    void TakeModule(size_t module, const short* samples);

    std::vector<LONG> Next_;  // kadr number that each module has to show next; -1: any
    LONG Kadrs_ = 0;
    std::string Fault_;
};

// A registered component and one object of it; afterwards nothing of it may be left in the simulator.
class DriverTest : public ::testing::Test {
protected:
    static void SetUpTestSuite() { ASSERT_EQ(S_OK, LoadedComponent().Call("DllRegisterServer")); }
    void SetUp() override;
    void TearDown() override;

    // Opens a device of so many modules, with all channels selected.
    bool OpenSequence(int modules);
    bool Start(float rate);
    // Unread kadrs have reached `kadrs` within 5 s.
    bool WaitForKadrs(LONG kadrs);

    Apartment Apartment_;
    ComPtr<IADC3> Driver;
};

std::vector<short> FirstChannels(int count);

}  // namespace corvane::test
