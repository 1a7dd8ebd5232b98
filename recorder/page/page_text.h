// The page of a report: one HTML file that needs nothing else.
#pragma once

#include <cstddef>
#include <string>

#include "recorder/output_file.h"
#include "recorder/page/collected.h"
#include "recorder/page/page_subject.h"

namespace corvane::recorder {

constexpr size_t PageMax = 20'000'000;  // bytes of a page

// Room for a page's data beside its program alone.
size_t DataRoom();

// Appends the page to the file's buffer, and writes it. It has at most PageMax bytes.
// Returns the kadrs of each bin of its data; 1: it has the samples.
int64_t WritePage(OutputFile& file, const PageSubject& subject, Collected& collected, Language language);

// JSON as it may stand in HTML: no tag can begin in it.
std::string JsonForHtml(const std::string& json);

}  // namespace corvane::recorder
