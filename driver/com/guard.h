// The wrapper around the functions that COM calls. It alone checks pointers, keeps exceptions inside and turns C++
// values into automation's.
#pragma once

#include <windows.h>

#include <concepts>
#include <new>
#include <string>
#include <vector>

#include "driver/com/arrays.h"
#include "driver/com/text.h"

namespace corvane {

inline void Store(BSTR* destination, const std::string& text) {
    *destination = ToBstr(text);
}
inline void Store(VARIANT_BOOL* destination, bool value) {
    *destination = value ? VARIANT_TRUE : VARIANT_FALSE;
}
inline void Store(SAFEARRAY** destination, const std::vector<int16_t>& samples) {
    *destination = ToArray(samples);
}
inline void Store(SAFEARRAY** destination, const std::vector<std::string>& texts) {
    *destination = ToArray(texts);
}
inline void Store(SAFEARRAY** destination, const std::vector<Gap>& gaps) {
    *destination = ToArray(gaps);
}

template <class Destination, std::convertible_to<Destination> Value>
void Store(Destination* destination, Value value) {
    *destination = static_cast<Destination>(value);
}

// Runs `body`. E_POINTER, with nothing done, when one of the needed pointers is null.
template <class Body, class... Needed>
HRESULT Guard(Body body, Needed*... needed) noexcept {
    if (((needed == nullptr) || ...)) return E_POINTER;
    try {
        body();
        return S_OK;
    } catch (const Failure& failure) {
        return failure.Code;
    } catch (const std::bad_alloc&) {
        return E_OUTOFMEMORY;
    } catch (...) {
        return E_UNEXPECTED;
    }
}

// Runs `body` and stores what it returns in `*result`, which is 0 or null after a failure. A host may pass the same
// variable as an argument and for the result, so nothing is stored before the body has read its arguments.
template <class Result, class Body, class... Needed>
HRESULT Guard(Result* result, Body body, Needed*... needed) noexcept {
    const HRESULT answer = Guard([&] { Store(result, body()); }, result, needed...);
    if (FAILED(answer) && result != nullptr) *result = Result{};
    return answer;
}

}  // namespace corvane
