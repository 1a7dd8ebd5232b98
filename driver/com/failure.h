// Failures inside the COM border, on their way to its guard.
#pragma once

#include <windows.h>

namespace corvane {

// A failure that the host is told as it is.
struct Failure {
    HRESULT Code;
};

// Throws the failure that `result` stands for, if it does.
inline void Check(HRESULT result) {
    if (FAILED(result)) throw Failure{result};
}

}  // namespace corvane
