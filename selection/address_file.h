// The file that keeps the server addresses from one use of the dialog to the next: 8-bit text, one dotted address a
// line, every line ended by CR LF. Reading takes any bytes; what is no address is skipped line by line.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace corvane {

// As many as a list of 16-bit positions has.
constexpr size_t MaxAddresses = 32767;

// The address that four numbers 0 to 255, of one to three digits each, give between dots; what follows a fourth dot
// does not matter. 0 when the text is none.
uint32_t ParseIP(std::string_view text);

// The addresses other than 0 in the file's order, each once, at most MaxAddresses; none when it can't be read.
std::vector<uint32_t> ReadAddresses(const std::string& path);

// Failure is silent.
void WriteAddresses(const std::string& path, std::span<const uint32_t> addresses);

}  // namespace corvane
