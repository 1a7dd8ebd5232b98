// The file that keeps the server addresses from one use of the dialog to the next: 8-bit text, one dotted address per
// line, each line ended by CR LF. Reading accepts any bytes: lines that are no address are skipped.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace corvane {

// As many entries as a list with 16-bit positions can have.
constexpr size_t MaxAddresses = 32767;

// The address in a text of four numbers from 0 to 255, of one to three digits each, with dots between them. A fourth
// dot and all that follows it are ignored. 0 when the text is no address.
uint32_t ParseIP(std::string_view text);

// The addresses other than 0 in the file's order, each once, at most MaxAddresses; none when the file can't be read.
std::vector<uint32_t> ReadAddresses(const std::string& path);

// Failure is silent.
void WriteAddresses(const std::string& path, std::span<const uint32_t> addresses);

}  // namespace corvane
