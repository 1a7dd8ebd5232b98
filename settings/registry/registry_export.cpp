// The part of cRegistry that reads whole keys: listings, values of any type, export. When a call of the platform fails,
// its buffer keeps what it was filled with before, and the work goes on with that.
#include <algorithm>
#include <array>
#include <cstring>

#include "platform/ansi_text.h"
#include "settings/registry/cRegistry.h"

namespace corvane {

namespace {

using namespace platform;

// The platform's limit for the levels of its tree. What is deeper can only be reached through a link that leads back
// up.
constexpr int DeepestLevel = 512;

// Appends a number as the registry editor writes it: hexadecimal, lowercase, with this many digits.
void AppendHex(std::string& text, uint32_t number, int digits) {
    while (digits-- > 0) text += "0123456789abcdef"[number >> (4 * digits) & 15];
}

std::string HexBytes(const RegistryBytes& bytes) {
    std::string text;
    text.reserve(bytes.size() * 3);
    for (const uint8_t byte : bytes) {
        if (!text.empty()) text += ',';
        AppendHex(text, byte, 2);
    }
    return text;
}

// Type codes in hexadecimal without leading zeros.
std::string HexType(uint32_t type) {
    int digits = 1;
    while (digits < 8 && type >> (4 * digits) != 0) digits++;
    std::string text;
    AppendHex(text, type, digits);
    return text;
}

// A text value's data between quotes: up to its first zero, backslashes doubled, no spaces around it.
std::string QuotedText(const RegistryBytes& data) {
    // Converted first: in some code pages the second byte of a character looks like a backslash.
    const std::string ansi(data.begin(), std::ranges::find(data, 0));
    std::string text;
    for (const char character : FromAnsi(ansi)) text.append(character == '\\' ? 2 : 1, character);
    const size_t first = std::min(text.find_first_not_of(' '), text.size());
    const size_t last = text.find_last_not_of(' ');
    return '"' + text.substr(first, last + 1 - first) + '"';
}

int32_t EnumNameOfValue(RegistryKey key, uint32_t index, char* name, uint32_t& length) {
    uint32_t size = 0;
    return EnumKeyValue(key, index, name, length, nullptr, nullptr, size);
}

// Cuts the buffer to the characters that the platform says it wrote; it may say more than there was room for.
void CutToLength(std::string& buffer, uint32_t length) {
    buffer.resize(std::min<size_t>(buffer.size(), length));
}

}  // namespace

bool cRegistry::EnumValueEntry(RegistryKey key, uint32_t index, uint32_t longestName, ValueEntry& entry) {
    entry = {std::string(size_t{longestName} + 1, ' '), 0, 0};
    uint32_t length = longestName + 1;
    const bool found =
        SetLastError(EnumKeyValue(key, index, entry.Name.data(), length, &entry.Type, nullptr, entry.Size));
    CutToLength(entry.Name, length);
    return found;
}

void cRegistry::EnumValueData(RegistryKey key, uint32_t index, uint32_t longestName, std::span<uint8_t> data) {
    std::string name(size_t{longestName} + 1, ' ');
    uint32_t length = longestName + 1;
    auto size = static_cast<uint32_t>(data.size());
    SetLastError(EnumKeyValue(key, index, name.data(), length, nullptr, data.data(), size));
}

int32_t cRegistry::EnumValueNumber(RegistryKey key, uint32_t index, uint32_t longestName) {
    std::array<uint8_t, 4> bytes = {};
    EnumValueData(key, index, longestName, bytes);
    int32_t number = 0;
    std::memcpy(&number, bytes.data(), sizeof number);
    return number;
}

uint32_t cRegistry::QueryValue(uint32_t root, const std::string& path, const std::string& name, RegistryValue& value) {
    HeldKey key;
    if (!OpenForListing(key, root, path)) return 0;
    KeyInfo info;
    SetLastError(QueryKeyInfo(key.Handle, info));
    const std::string wanted = ToAnsi(name);
    for (uint32_t index = 0; index < info.Values; index++) {
        ValueEntry entry;
        if (!EnumValueEntry(key.Handle, index, info.LongestValueName, entry) || entry.Name != wanted) continue;
        switch (entry.Type) {
            case TextType:
            case ExpandTextType:
            case MultiTextType: {
                RegistryBytes text(entry.Size);
                if (!text.empty()) {
                    EnumValueData(key.Handle, index, info.LongestValueName, text);
                    text.pop_back();
                }
                value = FromAnsi({reinterpret_cast<const char*>(text.data()), text.size()});
                break;
            }
            case BinaryType: {
                RegistryBytes bytes(entry.Size);
                if (!bytes.empty()) EnumValueData(key.Handle, index, info.LongestValueName, bytes);
                value = std::move(bytes);
                break;
            }
            case DWordType:
            case BigEndianDWordType:
                value = EnumValueNumber(key.Handle, index, info.LongestValueName);
                break;
            default:
                break;
        }
        return entry.Type;
    }
    return 0;
}

int32_t cRegistry::EnumNames(uint32_t root, const std::string& path, std::vector<std::string>& names,
                             uint32_t KeyInfo::*count, uint32_t KeyInfo::*longest, EnumerateName next) {
    names = {std::string(path)};  // a copy: `path` may be an element of `names`
    HeldKey key;
    if (!OpenForListing(key, root, names[0])) return 0;
    KeyInfo info;
    SetLastError(QueryKeyInfo(key.Handle, info));
    for (uint32_t index = 0; index < info.*count; index++) {
        uint32_t length = info.*longest + 1;
        std::string name(length, ' ');
        SetLastError(next(key.Handle, index, name.data(), length));
        CutToLength(name, length);
        names.push_back(FromAnsi(name));
    }
    return static_cast<int32_t>(info.*count);
}

int32_t cRegistry::EnumSubKeys(uint32_t root, const std::string& path, std::vector<std::string>& names) {
    return EnumNames(root, path, names, &KeyInfo::SubKeys, &KeyInfo::LongestSubKey, &EnumKeyName);
}

int32_t cRegistry::EnumValues(uint32_t root, const std::string& path, std::vector<std::string>& names) {
    return EnumNames(root, path, names, &KeyInfo::Values, &KeyInfo::LongestValueName, &EnumNameOfValue);
}

std::string cRegistry::ExportKey(uint32_t root, const std::string& path, bool includeSubKeys) {
    return ExportLevel(root, path, includeSubKeys, 1);
}

std::string cRegistry::ExportLevel(uint32_t root, const std::string& path, bool includeSubKeys, int level) {
    std::string text;
    {
        HeldKey key;
        if (!OpenForListing(key, root, path)) return {};
        text = "\r\n[" + RootKeyName(root) + (path.empty() ? "" : "\\") + path + "]\r\n";
        KeyInfo info;
        SetLastError(QueryKeyInfo(key.Handle, info));
        for (uint32_t index = 0; index < info.Values; index++) {
            ValueEntry entry;
            if (!EnumValueEntry(key.Handle, index, info.LongestValueName, entry)) continue;
            text += entry.Name.empty() ? "@=" : '"' + FromAnsi(entry.Name) + "\"=";
            text += ExportData(key.Handle, index, info.LongestValueName, entry) + "\r\n";
        }
    }
    if (includeSubKeys && level < DeepestLevel) text += ExportSubKeys(root, path, includeSubKeys, level);
    return text;
}

std::string cRegistry::ExportSubKeys(uint32_t root, const std::string& path, bool includeSubKeys, int level) {
    std::vector<std::string> names;
    EnumSubKeys(root, path, names);
    const std::string prefix = path.empty() ? "" : path + "\\";
    std::string text;
    for (size_t i = 1; i < names.size(); i++) {
        // The ANSI functions see a name only up to its first zero: they would open another key, even this one again.
        if (names[i].empty() || names[i].find('\0') != std::string::npos) continue;
        text += ExportLevel(root, prefix + names[i], includeSubKeys, level + 1);
    }
    return text;
}

// Types without a text form of their own are written as the editor writes them: hex(type) and the bytes.
std::string cRegistry::ExportData(RegistryKey key, uint32_t index, uint32_t longestName, const ValueEntry& entry) {
    const bool isText = entry.Type == TextType || entry.Type == ExpandTextType || entry.Type == MultiTextType;
    if (entry.Type == DWordType || entry.Type == BigEndianDWordType) {
        std::string text = "dword:";
        AppendHex(text, static_cast<uint32_t>(EnumValueNumber(key, index, longestName)), 8);
        return text;
    }
    RegistryBytes data(entry.Size, isText ? ' ' : 0);
    if (!data.empty()) EnumValueData(key, index, longestName, data);
    if (isText) return QuotedText(data);
    return (entry.Type == BinaryType ? "hex:" : "hex(" + HexType(entry.Type) + "):") + HexBytes(data);
}

}  // namespace corvane
