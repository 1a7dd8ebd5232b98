// What a page says of a recording besides its samples.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "recorder/channel.h"
#include "recorder/page/kadr_block.h"
#include "recorder/verdict.h"

namespace corvane::recorder {

// Columns that were missing together, and the module that they come from.
struct GapOwner {
    int32_t Module = -1;  // -1: unknown
    int Slot = 0;         // 0: unknown
    Columns Channels = 0;
};

struct PageSubject {
    std::string File;
    std::vector<std::string> Lines;  // "What: ...", where it comes from
    bool Simulated = false;
    bool FromText = false;          // the numbers are a text's digits: it has neither codes nor channel numbers
    bool FilledIn = false;          // the text has filled-in values where nothing was measured
    std::vector<Channel> Channels;  // a value is a sample or the digits / Scale + Offset
    std::vector<int> Decimals;      // of each channel's values
    double Rate = 1;                // Hz
    std::string Start;              // local time, in ISO 8601; empty: unknown
    int64_t FirstKadr = 0;
    int64_t Step = 1;           // kadrs from one row to the next
    int64_t PromisedKadrs = 0;  // more than there are: the file is cut off
    Verdict Ending;
    std::vector<GapOwner> Owners;
    std::vector<size_t> GapOwners;  // of each of the ending's gaps
};

}  // namespace corvane::recorder
