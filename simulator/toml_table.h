// One TOML table, read strictly: unknown keys, wrong types and values out of bounds throw a ScenarioError that names
// the line and the key. Getters answer nothing for an absent key; Required turns that into an error as well.
#pragma once

#include <toml++/toml.h>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>

namespace ltrsim {

// `source` names the text in messages. Throws ScenarioError.
toml::table ParseToml(std::string_view text, const std::string& source);

class TomlTable {
public:
    TomlTable(const toml::table& table, const std::string& source, std::initializer_list<std::string_view> keys);

    std::optional<double> Number(std::string_view key, double low, double high) const;
    std::optional<int64_t> Integer(std::string_view key, int64_t low, int64_t high) const;
    std::optional<std::string> Text(std::string_view key) const;
    // Text that fits a fixed field of the records: 1 to 16 printable ASCII characters, no blanks.
    std::optional<std::string> FieldText(std::string_view key) const;
    std::optional<char> Letter(std::string_view key) const;
    std::optional<uint32_t> Address(std::string_view key) const;   // "127.0.0.1"
    std::optional<uint32_t> Firmware(std::string_view key) const;  // "1.0.2.3"
    bool True(std::string_view key) const;
    const toml::node* Find(std::string_view key) const { return Table_.get(key); }

    template <class Value>
    Value Required(std::optional<Value> value, std::string_view key) const {
        if (!value) Refuse(key, "is missing");
        return *std::move(value);
    }

    // Calls `read` for each table of an array of tables; an absent key is an empty array.
    void ForEach(std::string_view key, const std::function<void(const toml::table&)>& read) const;

    [[noreturn]] void Refuse(std::string_view key, const std::string& reason) const;

private:
    std::optional<uint32_t> Dotted(std::string_view key) const;

    const toml::table& Table_;
    const std::string& Source_;
};

}  // namespace ltrsim
