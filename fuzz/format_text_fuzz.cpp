// FormatText with any template and any arguments.
#include "common/mTypes3.h"
#include "fuzz/fuzz_input.h"
#include "platform/ansi_text.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace corvane;
    FuzzInput input(data, size);
    std::string arguments[5];
    size_t room = 0;
    for (std::string& each : arguments) {
        each = input.Text();
        room += 2 * (platform::ToAnsi(each).size() + 1);
    }
    std::string pattern;
    while (!input.Empty()) pattern += static_cast<char>(input.Byte());
    const std::string text = FormatText(pattern, arguments[0], arguments[1], arguments[2], arguments[3], arguments[4]);
    std::string bare = pattern;
    std::erase(bare, '%');
    if (pattern == bare) {
        Require(text == pattern, "nothing to fill in");
    } else if (text != bare) {
        Require(!text.empty(), "an empty result is none");
        Require(platform::ToAnsi(text).size() < platform::ToAnsi(pattern).size() + room, "within its room");
    }
    return 0;
}
