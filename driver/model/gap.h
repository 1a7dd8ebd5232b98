// A run of kadrs whose samples were not measured.
#pragma once

#include <cstdint>

namespace corvane {

// Why samples are not what the module measured. The numbers are those that hosts are told.
enum class GapReason : uint8_t {
    Various = 0,       // several gaps in one, because the list was full
    CutShort = 1,      // a receive was cut short: mid-scale
    NothingCame = 2,   // the last block again, or the lowest code when there was none yet
    NotProcessed = 3,  // the same, because the library could not process what came; or it gave no number
};

// The reason in words, for the log and for users.
inline const char* ReasonText(GapReason reason) {
    switch (reason) {
        case GapReason::CutShort:
            return "a receive was cut short";
        case GapReason::NothingCame:
            return "nothing came";
        case GapReason::NotProcessed:
            return "the library could not process what came";
        case GapReason::Various:
            break;
    }
    return "various gaps, too many to be listed one by one";
}

// A run of kadrs of one module.
struct Gap {
    int32_t Module = 0;  // index of the opened module
    int64_t First = 0;   // kadr; 0 is the recording's first
    int64_t Kadrs = 0;
    GapReason Reason = GapReason::Various;

    bool operator==(const Gap&) const = default;
};

}  // namespace corvane
