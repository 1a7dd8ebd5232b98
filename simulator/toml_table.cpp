#include "simulator/toml_table.h"

#include <algorithm>
#include <cstdio>
#include <sstream>

#include "hardware/vendor_records.h"
#include "simulator/scenario_error.h"

namespace ltrsim {

namespace {

template <class Value>
std::string Between(Value low, Value high) {
    std::ostringstream text;
    text << "must be a number from " << low << " to " << high;
    return text.str();
}

[[noreturn]] void RefuseLine(const std::string& source, int64_t line, std::string_view reason) {
    throw ScenarioError(source + ":" + std::to_string(line) + ": " + std::string(reason));
}

// How the string that begins here ends; empty: none does.
std::string_view QuotesAt(std::string_view text) {
    for (const std::string_view quotes : {R"(""")", "'''", "\"", "'"}) {
        if (text.starts_with(quotes)) return quotes;
    }
    return {};
}

// Only strings and comments may have other letters than ASCII. The parser does not refuse each of them elsewhere: some
// lead it to where its authors thought it could never come.
void RefuseForeignLetters(std::string_view text, const std::string& source) {
    constexpr std::string_view ByteOrderMark = "\xEF\xBB\xBF";
    int64_t line = 1;
    bool comment = false;
    std::string_view quotes;  // that end the string which is being read
    for (size_t at = text.starts_with(ByteOrderMark) ? ByteOrderMark.size() : 0; at < text.size(); at++) {
        const std::string_view rest = text.substr(at);
        const bool escape = rest[0] == '\\' && quotes.starts_with('"');
        if (rest[0] == '\n') {
            line++;
            comment = false;
            if (quotes.size() == 1) quotes = {};  // the parser refuses it
        } else if (!quotes.empty() && rest.starts_with(quotes)) {
            at += quotes.size() - 1;
            quotes = {};
        } else if (quotes.empty() && !comment) {
            comment = rest[0] == '#';
            quotes = QuotesAt(rest);
            if (!quotes.empty()) at += quotes.size() - 1;
        }
        if (escape && !rest.substr(1).starts_with('\n')) at++;
        const bool plain = quotes.empty() && !comment;
        if ((plain || escape) && at < text.size() && static_cast<unsigned char>(text[at]) >= 0x80) {
            RefuseLine(source, line, "a letter that only a string or a comment may have");
        }
    }
}

}  // namespace

toml::table ParseToml(std::string_view text, const std::string& source) {
    RefuseForeignLetters(text, source);
    try {
        return toml::parse(text, source);
    } catch (const toml::parse_error& error) {
        RefuseLine(source, error.source().begin.line, error.description());
    }
}

TomlTable::TomlTable(const toml::table& table, const std::string& source, std::initializer_list<std::string_view> keys)
    : Table_(table), Source_(source) {
    for (const auto& [key, node] : table) {
        if (std::find(keys.begin(), keys.end(), key.str()) == keys.end()) Refuse(key.str(), "is not known here");
    }
}

std::optional<double> TomlTable::Number(std::string_view key, double low, double high) const {
    const toml::node* node = Find(key);
    if (!node) return std::nullopt;
    // The negated comparison refuses NaN as well.
    const std::optional<double> value = node->is_number() ? node->value<double>() : std::nullopt;
    if (!value || !(*value >= low && *value <= high)) Refuse(key, Between(low, high));
    return value;
}

std::optional<int64_t> TomlTable::Integer(std::string_view key, int64_t low, int64_t high) const {
    const toml::node* node = Find(key);
    if (!node) return std::nullopt;
    const std::optional<int64_t> value = node->value_exact<int64_t>();
    if (!value || *value < low || *value > high) Refuse(key, Between(low, high) + ", without a fraction");
    return value;
}

std::optional<std::string> TomlTable::Text(std::string_view key) const {
    const toml::node* node = Find(key);
    if (!node) return std::nullopt;
    std::optional<std::string> value = node->value_exact<std::string>();
    if (!value) Refuse(key, "must be a text");
    return value;
}

std::optional<std::string> TomlTable::FieldText(std::string_view key) const {
    std::optional<std::string> value = Text(key);
    const auto printable = [](char character) { return character > ' ' && character <= '~'; };
    if (value && (value->empty() || value->size() > corvane::VendorTextSize ||
                  !std::all_of(value->begin(), value->end(), printable))) {
        Refuse(key, "must have 1 to 16 ASCII characters without blanks");
    }
    return value;
}

std::optional<char> TomlTable::Letter(std::string_view key) const {
    const std::optional<std::string> value = FieldText(key);
    if (!value) return std::nullopt;
    if (value->size() != 1) Refuse(key, "must be one character");
    return value->front();
}

std::optional<uint32_t> TomlTable::Dotted(std::string_view key) const {
    const std::optional<std::string> text = Text(key);
    if (!text) return std::nullopt;
    unsigned part[4] = {};
    int used = 0;
    const int found = std::sscanf(text->c_str(), "%3u.%3u.%3u.%3u%n", &part[0], &part[1], &part[2], &part[3], &used);
    const bool bytes = std::all_of(part, part + 4, [](unsigned value) { return value <= 255; });
    if (found != 4 || static_cast<size_t>(used) != text->size() || !bytes) {
        Refuse(key, "must be four numbers from 0 to 255 with dots between them");
    }
    return part[0] << 24 | part[1] << 16 | part[2] << 8 | part[3];
}

std::optional<uint32_t> TomlTable::Address(std::string_view key) const {
    return Dotted(key);
}

std::optional<uint32_t> TomlTable::Firmware(std::string_view key) const {
    return Dotted(key);
}

bool TomlTable::True(std::string_view key) const {
    const toml::node* node = Find(key);
    if (node && node->value_exact<bool>() != true) Refuse(key, "can only be true");
    return node != nullptr;
}

void TomlTable::ForEach(std::string_view key, const std::function<void(const toml::table&)>& read) const {
    const toml::node* node = Find(key);
    if (!node) return;
    const toml::array* array = node->as_array();
    if (!array) Refuse(key, "must be an array of tables");
    for (const toml::node& element : *array) {
        if (!element.is_table()) Refuse(key, "must be an array of tables");
        read(*element.as_table());
    }
}

void TomlTable::Refuse(std::string_view key, const std::string& reason) const {
    const toml::node* node = Find(key);
    const auto line = (node ? node->source() : Table_.source()).begin.line;
    throw ScenarioError(Source_ + ":" + std::to_string(line) + ": key '" + std::string(key) + "' " + reason);
}

}  // namespace ltrsim
