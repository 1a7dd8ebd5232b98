// Registers the component for the whole run of a test program whose tests are not only for Windows.
#include "tests/windows/com_host.h"

namespace corvane::test {
namespace {

class Registered : public testing::Environment {
    void SetUp() override { ASSERT_EQ(S_OK, LoadedComponent().Call("DllRegisterServer")); }
};

const testing::Environment* const Added = testing::AddGlobalTestEnvironment(new Registered);

}  // namespace
}  // namespace corvane::test
