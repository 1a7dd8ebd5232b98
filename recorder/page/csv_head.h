// What the lines around the rows of a recorded CSV say.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "recorder/page/page_subject.h"

namespace corvane::recorder {

// "# What: ..." before the rows. Fills in what is known from them.
void UnderstandHeadLine(std::string_view line, PageSubject& subject);

// The row of names, which may have line breaks in quotes. Bytes of it with its end; none: it is no such row, or not
// whole. `separator` and `point` are those of the rows then.
std::optional<size_t> UnderstandNames(std::string_view text, PageSubject& subject, char& separator, char& point);

// "# ..." behind the rows: a gap, a doubt or how it ended.
void UnderstandTailLine(std::string_view line, PageSubject& subject);

}  // namespace corvane::recorder
