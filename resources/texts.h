// The component's numbered texts, each in English and Russian.
#pragma once

#include <cstdint>
#include <string>

namespace corvane {

enum TextNumber : int32_t {
#define CORVANE_TEXT(name, number, english, russian) name##Text = number,
#include "resources/string_table.inc"
#undef CORVANE_TEXT
};

// The text in the user's language, UTF-8; empty when there is none with that number.
std::string StringResource(int32_t number);

}  // namespace corvane
