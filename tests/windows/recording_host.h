// A host with a device: the component registered, the simulator's modules behind it, all of whose channels number the
// kadrs.
#pragma once

#include <string>

#include "simulator/control.h"
#include "simulator/sequence.h"
#include "tests/windows/com_host.h"

namespace corvane::test {

// One crate with LTR27 modules in slots 1 to `modules`, as fast as taken.
std::string SequenceScenario(int modules);

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

    Apartment Com;
    ComPtr<IADC3> Driver;
};

}  // namespace corvane::test
