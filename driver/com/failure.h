// Failures inside driver/com, which Guard turns into results.
#pragma once

#include <windows.h>

namespace corvane {

// A failure that the host gets as the result of its call.
struct Failure {
    HRESULT Code;
};

// Throws `result` as a Failure when it is a failure code.
inline void Check(HRESULT result) {
    if (FAILED(result)) throw Failure{result};
}

}  // namespace corvane
