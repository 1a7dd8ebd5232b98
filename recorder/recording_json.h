// What a recording says of itself besides its samples, as a JSON file.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "recorder/recording.h"
#include "recorder/verdict.h"

namespace corvane::recorder {

// `kadrs` are in the file that the text is about. The number is in the text when it is known how the file ended.
std::string DescriptionText(const Recording& recording, const Verdict& verdict, int64_t kadrs);

struct Description {
    recorder::Recording Recording;
    recorder::Verdict Verdict;  // its kadrs are those of `kadrs`, and all before them
    std::string RecordedBy;     // the recorder's version
};

// What such a text says of a file of `kadrs` kadrs of `channels` channels. Nothing in it is taken on trust: throws
// std::runtime_error with what is wrong.
Description ParseDescription(std::string_view text, int64_t kadrs, int64_t channels);

}  // namespace corvane::recorder
