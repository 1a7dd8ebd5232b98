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

}  // namespace

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
