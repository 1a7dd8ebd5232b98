// English: the portable build has no user interface language.
#include "resources/texts.h"

namespace corvane {

std::string StringResource(int32_t number) {
    switch (number) {
#define CORVANE_TEXT(name, id, english, russian) \
    case id:                                     \
        return english;
#include "resources/string_table.inc"
#undef CORVANE_TEXT
        default:
            return {};
    }
}

}  // namespace corvane
