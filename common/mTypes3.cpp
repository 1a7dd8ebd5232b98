#include "common/mTypes3.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "platform/ansi_text.h"
#include "platform/message_text.h"
#include "resources/texts.h"

namespace corvane {

namespace {

bool IsDigit(char character) {
    return character >= '0' && character <= '9';
}

// Skips up to five digits. A longer number makes the insert unsafe: it is more characters than the platform's buffers
// hold.
void SkipNumber(std::string_view& text) {
    for (int digits = 0; digits < 5 && !text.empty() && IsDigit(text.front()); digits++) text.remove_prefix(1);
}

bool SkipIf(std::string_view& text, char character) {
    if (!text.starts_with(character)) return false;
    text.remove_prefix(1);
    return true;
}

// Skips an insert, whose "%" has been read already. False when the platform would read anything but the five texts for
// it: for a number above 5, for a width that is an argument itself, for a conversion to wide text.
bool SkipSafeInsert(std::string_view& text) {
    if (text.front() > '5' || (text.size() > 1 && IsDigit(text[1]))) return false;
    text.remove_prefix(1);
    if (!SkipIf(text, '!')) return true;
    SkipIf(text, '-');
    if (text.starts_with('0')) return false;  // some platforms pad a text with zeros then, others do not
    SkipNumber(text);
    if (SkipIf(text, '.')) SkipNumber(text);
    return SkipIf(text, 's') && SkipIf(text, '!');
}

bool AsksOnlyForArguments(std::string_view pattern) {
    pattern = pattern.substr(0, pattern.find('\0'));  // where the platform stops reading
    for (size_t percent; (percent = pattern.find('%')) != std::string_view::npos;) {
        pattern.remove_prefix(percent + 1);
        if (pattern.empty()) return false;
        if (pattern.front() == '0') return true;  // ends the text
        if (!IsDigit(pattern.front())) {
            pattern.remove_prefix(1);
        } else if (!SkipSafeInsert(pattern)) {
            return false;
        }
    }
    return true;
}

}  // namespace

void InitSettingsLocation(SettingsLocation& location, std::string& driverName, const std::string& name) {
    if (driverName.empty()) driverName = name;
    location.SettingsKeyPath = "Software\\Vrex\\ADC\\L-Card\\" + name;
    if (!GoToSettings(location)) return;
    cRegistry& registry = location.SettingsRegistry;
    if (registry.StringValue("") != name) registry.WriteString("", name);
}

std::string ResourceText(int32_t number, const std::string& a1, const std::string& a2, const std::string& a3) {
    return FormatText(StringResource(number), a1, a2, a3, {}, {});
}

std::string FormatText(const std::string& pattern, const std::string& a1, const std::string& a2, const std::string& a3,
                       const std::string& a4, const std::string& a5) {
    if (pattern.find('%') == std::string::npos) return pattern;
    const std::string* texts[] = {&a1, &a2, &a3, &a4, &a5};
    std::array<std::string, 5> packed;
    platform::MessageArguments arguments;
    size_t packedSize = 0;  // characters, each text with its terminator
    for (size_t i = 0; i < packed.size(); i++) {
        packed[i] = platform::ToAnsi(*texts[i]);
        arguments[i] = packed[i].c_str();
        packedSize += packed[i].size() + 1;
    }
    const std::string ansi = platform::ToAnsi(pattern);
    if (AsksOnlyForArguments(ansi)) {
        const auto capacity = static_cast<uint32_t>(ansi.size() + 2 * (packedSize - 1));
        const std::string text = platform::FormatMessageTemplate(ansi, arguments, capacity);
        if (!text.empty()) return platform::FromAnsi(text);
    }
    std::string bare = pattern;
    std::erase(bare, '%');
    return bare;
}

}  // namespace corvane
