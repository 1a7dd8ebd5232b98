#include "selection/address_file.h"

#include <algorithm>
#include <unordered_set>

#include "base/dotted_address.h"
#include "platform/files.h"

namespace corvane {

namespace {

constexpr size_t MaxFileBytes = 16 << 20;  // read at most; the longest list has far fewer
constexpr std::string_view ByteOrderMark = "\xEF\xBB\xBF";
constexpr std::string_view LineEnds = "\r\n";

}  // namespace

uint32_t ParseIP(std::string_view text) {
    uint32_t address = 0;
    for (int i = 0; i < 4; i++) {
        const std::string_view part = text.substr(0, text.find('.'));
        const std::optional<uint8_t> octet = ParseOctet(part);
        if (!octet || part.size() > OctetDigits) return 0;
        address = address << 8 | *octet;
        text.remove_prefix(std::min(part.size() + 1, text.size()));
    }
    return address;
}

std::vector<uint32_t> ReadAddresses(const std::string& path) {
    const std::string bytes = platform::ReadFileStart(path, MaxFileBytes);
    std::string_view rest = bytes;
    if (rest.size() == MaxFileBytes) rest = rest.substr(0, rest.find_last_of(LineEnds) + 1);  // the last line was cut
    if (rest.starts_with(ByteOrderMark)) rest.remove_prefix(ByteOrderMark.size());
    std::vector<uint32_t> addresses;
    std::unordered_set<uint32_t> known = {0};
    while (!rest.empty() && addresses.size() < MaxAddresses) {
        const std::string_view line = rest.substr(0, rest.find_first_of(LineEnds));
        rest.remove_prefix(line.size() < rest.size() ? line.size() + 1 : line.size());
        const uint32_t address = ParseIP(line);
        if (known.insert(address).second) addresses.push_back(address);
    }
    return addresses;
}

void WriteAddresses(const std::string& path, std::span<const uint32_t> addresses) {
    std::string bytes;
    for (const uint32_t address : addresses) bytes += DottedText(address) + "\r\n";
    platform::ReplaceContent(path, bytes);
}

}  // namespace corvane
