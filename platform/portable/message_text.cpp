#include "platform/message_text.h"

#include <algorithm>
#include <cctype>
#include <cstring>
#include <optional>
#include <string_view>

namespace corvane::platform {

namespace {

constexpr uint32_t CapacityLimit = 32768;  // the platform refuses larger buffers

struct SystemText {
    int32_t Code;
    const char* Text;
};

constexpr SystemText SystemTexts[] = {
    {0, "The operation completed successfully.\r\n"},
    {2, "The system cannot find the file specified.\r\n"},
    {5, "Access is denied.\r\n"},
    {6, "The handle is invalid.\r\n"},
    {87, "The parameter is incorrect.\r\n"},
    {161, "The specified path is invalid.\r\n"},
    {234, "More data is available.\r\n"},
    {259, "No more data is available.\r\n"},
    {1018, "Illegal operation attempted on a registry key that has been marked for deletion.\r\n"},
};

// Reads a template character by character; at its end it reads zeros.
class Reader {
public:
    explicit Reader(std::string_view text) : Text_(text.substr(0, text.find('\0'))) {}

    char Peek() const { return Next_ < Text_.size() ? Text_[Next_] : '\0'; }
    char Take() {
        const char character = Peek();
        if (Next_ < Text_.size()) Next_++;
        return character;
    }
    bool TakeIf(char character) {
        if (character == '\0' || Peek() != character) return false;
        Next_++;
        return true;
    }
    bool AtDigit() const { return std::isdigit(static_cast<unsigned char>(Peek())) != 0; }
    // The number in the digits here; CapacityLimit for a larger one.
    size_t TakeNumber() {
        size_t number = 0;
        while (AtDigit()) number = std::min<size_t>(number * 10 + static_cast<size_t>(Take() - '0'), CapacityLimit);
        return number;
    }

private:
    std::string_view Text_;
    size_t Next_ = 0;
};

// The text of one insert, whose first digit has been read. None when its format has no end or is not that of a text.
std::optional<std::string> TakeInsert(Reader& reader, size_t number, const MessageArguments& arguments) {
    if (reader.AtDigit()) number = number * 10 + static_cast<size_t>(reader.Take() - '0');
    if (number > arguments.size()) return std::nullopt;
    std::string text = arguments[number - 1];
    if (!reader.TakeIf('!')) return text;
    const bool left = reader.TakeIf('-');
    const size_t width = reader.TakeNumber();
    if (reader.TakeIf('.')) text.resize(std::min(text.size(), reader.TakeNumber()));
    if (!reader.TakeIf('s') || !reader.TakeIf('!')) return std::nullopt;
    if (text.size() < width) text.insert(left ? text.size() : 0, width - text.size(), ' ');
    return text;
}

}  // namespace

std::string FormatMessageTemplate(const std::string& pattern, const MessageArguments& arguments, uint32_t capacity) {
    if (capacity >= CapacityLimit) return {};
    Reader reader(pattern);
    std::string text;
    while (char character = reader.Take()) {
        if (text.size() >= capacity) return {};
        if (character == '\r') {
            reader.TakeIf('\n');
            character = '\n';
        }
        if (character == '\n') {
            text += "\r\n";
        } else if (character != '%') {
            text += character;
        } else if (const char escape = reader.Take(); escape >= '1' && escape <= '9') {
            const auto insert = TakeInsert(reader, static_cast<size_t>(escape - '0'), arguments);
            if (!insert) return {};
            text += *insert;
        } else if (escape == '0') {
            break;
        } else if (escape == '\0') {
            return {};
        } else if (escape == 'n') {
            text += "\r\n";
        } else {
            text += escape == 't' ? '\t' : escape == 'r' ? '\r' : escape;
        }
    }
    return text.size() < capacity ? text : std::string();
}

std::string SystemMessage(int32_t code, uint32_t capacity) {
    for (const SystemText& each : SystemTexts) {
        if (each.Code == code && std::strlen(each.Text) < capacity) return each.Text;
    }
    return {};
}

}  // namespace corvane::platform
