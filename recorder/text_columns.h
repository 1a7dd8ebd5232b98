// Texts in a grid of cells, as terminals show them: most characters take one, some two, some none.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace corvane::recorder {

// Cells that a text takes. It is UTF-8; control characters count as one, see Fitted.
size_t ColumnsOf(std::string_view text);

// The text in so many cells: cut where it is longer, and filled with spaces, on its left if `right`. What would move
// the cursor becomes "?".
std::string Fitted(std::string_view text, size_t columns, bool right = false);

}  // namespace corvane::recorder
