// What the dialogs leave in their host when they are gone: nothing that grows.
#include <algorithm>
#include <cstdlib>

#include "tests/windows/dialog_host.h"

namespace corvane::test {
namespace {

// Objects of this process. Wine counts none, but numbers them from the lowest free number: those that are made here
// fill whatever is free below.
DWORD Objects(DWORD kind, const std::function<void*()>& create, const std::function<void(void*)>& destroy) {
    if (const DWORD counted = GetGuiResources(GetCurrentProcess(), kind); counted != 0) return counted;
    std::vector<void*> probes(3000);
    WORD highest = 0;
    for (void*& probe : probes) highest = std::max(highest, LOWORD(reinterpret_cast<uintptr_t>(probe = create())));
    for (void* const probe : probes) destroy(probe);
    return highest;
}

// As many rounds as CORVANE_ROUNDS says; few by default.
TEST_F(Dialogs, LeaveNoWindowsHandlesOrPictures) {
    const char* asked = std::getenv("CORVANE_ROUNDS");
    const int first = 3, rounds = first + (asked != nullptr ? std::atoi(asked) : 12);
    static ACCEL key = {FVIRTKEY, VK_F24, 1};
    const auto each = static_cast<DWORD>((rounds - first) / 3);  // times that each dialog comes up
    DWORD handles = 0, user = 0, gdi = 0;
    for (int round = 0;; round++) {
        Driver.Reset();
        if (round == first || round == rounds) {
            const DWORD handlesNow = OpenHandles();
            const DWORD userNow = Objects(
                GR_USEROBJECTS, [] { return CreateAcceleratorTableW(&key, 1); },
                [](void* table) { DestroyAcceleratorTable(static_cast<HACCEL>(table)); });
            const DWORD gdiNow = Objects(
                GR_GDIOBJECTS, [] { return CreatePen(PS_SOLID, 1, 0); }, [](void* pen) { DeleteObject(pen); });
            if (round == rounds) {
                std::printf("%d rounds: handles %lu -> %lu, user %lu -> %lu, gdi %lu -> %lu\n", rounds - first, handles,
                            handlesNow, user, userNow, gdi, gdiNow);
                EXPECT_LT(handlesNow, handles + each);
                EXPECT_LT(userNow, user + each);
                EXPECT_LT(gdiNow, gdi + each);
                return;
            }
            handles = handlesNow, user = userNow, gdi = gdiNow;
        }
        const char* const server = round % 3 == 0 ? "192.168.10.5" : "127.0.0.1";
        Configure(Server(server) + Crate("FIRST", {3}) + (round % 3 == 1 ? Crate("SECOND", {12}) : ""));
        Driver = CreateDriver();
        const auto close = [](DialogUser&) {};
        if (round % 3 < 2) {
            EXPECT_FALSE(TestWith(round % 3 == 0 ? AddressTitle : DeviceTitle, close));
            continue;
        }
        ASSERT_TRUE(True(Driver.Get(), &IADC3::Test));
        SettingWith(close);
        EXPECT_TRUE(Start(1000));
    }
}

}  // namespace
}  // namespace corvane::test
