// A registry with any content: the settings that the driver takes from it, and what cRegistry reads.
#include <cmath>
#include <set>

#include "driver/driver_object.h"
#include "driver/lifecycle.h"
#include "fuzz/fuzz_input.h"
#include "platform/ansi_text.h"
#include "standins/registry_hooks.h"

namespace corvane {
namespace {

using platform::CurrentUserRoot;

const std::string Path = "Software\\Vrex\\ADC\\L-Card\\LTR27";

// Names as the driver asks for them, or any; any type and data. Returns the values' names.
std::vector<std::string> StoreAny(FuzzInput& input) {
    std::vector<std::string> names;
    while (!input.Empty()) {
        static const std::string known[] = {"Rate", "MarkSTARTMode", "", "rate"};
        const uint8_t choice = input.Byte();
        const std::string name = choice % 8 < std::size(known) ? known[choice % 8] : input.Text();
        if (choice >= 0xF8) {
            platform::StoreSubKey(CurrentUserRoot, choice % 2 == 0 ? Path : Path + "\\" + input.Text(), name);
            continue;
        }
        const uint32_t type = choice >= 0xF0 ? input.Any<uint32_t>() : choice / 8 % 12;
        platform::StoreValue(CurrentUserRoot, Path, name, type, input.Text());
        names.push_back(name);
    }
    return names;
}

template <class Value>
bool Same(const Value& one, const Value& other) {
    return one == other || (one != one && other != other);  // NaN, too
}

// Every reader gets a value or leaves it; what was read can be written and read again.
void ReadEach(cRegistry& registry, const std::string& name) {
#define CORVANE_REQUIRE_ROUND_TRIP(F, T)                                                      \
    if (T value = {}, again = {}; registry.Read##F##At(CurrentUserRoot, Path, name, value)) { \
        Require(registry.Write##F##At(CurrentUserRoot, Path, "again", value), "written");     \
        Require(registry.Read##F##At(CurrentUserRoot, Path, "again", again), "read again");   \
        Require(Same(value, again), "the same " #F);                                          \
    }
    CORVANE_REGISTRY_FAMILIES(CORVANE_REQUIRE_ROUND_TRIP)
    CORVANE_REQUIRE_ROUND_TRIP(Binary, RegistryBytes)
#undef CORVANE_REQUIRE_ROUND_TRIP
    std::string text;
    if (registry.ReadStringAt(CurrentUserRoot, Path, name, text)) {
        RequireText(text, AnyControl.substr(1), "text without zeros");
    }
    RegistryValue any;
    const uint32_t type = registry.QueryValue(CurrentUserRoot, Path, name, any);
    Require(any.index() != 1 || type == platform::DWordType || type == platform::BigEndianDWordType, "a number");
    const bool isText =
        type == platform::TextType || type == platform::ExpandTextType || type == platform::MultiTextType;
    Require(any.index() != 2 || isText, "a text");
    Require(any.index() != 3 || type == platform::BinaryType, "bytes");
}

void ReadAll(const std::vector<std::string>& stored) {
    cRegistry registry;
    std::vector<std::string> names;
    const int32_t count = registry.EnumValues(CurrentUserRoot, Path, names);
    Require(names.size() == static_cast<size_t>(count) + 1 && names[0] == Path, "all names");
    constexpr size_t ReadMost = 6;  // each is read in nine ways
    for (size_t i = 0; i < std::min(stored.size(), ReadMost); i++) ReadEach(registry, platform::FromAnsi(stored[i]));
    Require(registry.EnumSubKeys(CurrentUserRoot, Path, names) >= 0, "a number of keys");
    const std::string text = registry.ExportKey(CurrentUserRoot, "Software", true);
    Require(text.starts_with("\r\n[HKEY_CURRENT_USER\\Software]\r\n"), "an export");
}

}  // namespace
}  // namespace corvane

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace corvane;
    platform::ClearRegistry();
    FuzzInput input(data, size);
    const std::vector<std::string> names = StoreAny(input);
    float rate = 0;
    int16_t mode = 0;
    for (int turn = 0; turn < 3; turn++) {  // the second and the third read what the first has written
        const DriverObject driver;
        DriverState& state = AttachObject();
        Require(state.Input.Rate > 0 && state.Input.Rate <= state.Input.RateMax, "a rate");
        Require(state.Crate.MarkSTARTMode >= 0 && state.Crate.MarkSTARTMode < 8, "a mark mode");
        Require(turn == 0 || (state.Input.Rate == rate && state.Crate.MarkSTARTMode == mode), "kept");
        rate = state.Input.Rate;
        mode = state.Crate.MarkSTARTMode;
        DetachObject(state);
    }
    ReadAll(names);
    Require(platform::OpenRegistryKeys() == 0, "no key stays open");
    return 0;
}
