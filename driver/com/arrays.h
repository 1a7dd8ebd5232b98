// Automation's arrays to and from the driver's vectors. Every array handed out belongs to the caller and is typed
// (VT_I2, VT_BSTR or VT_R8), with lower bounds 0. Functions throw std::bad_alloc or Failure.
#pragma once

#include <windows.h>

#include <oleauto.h>

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "driver/com/failure.h"
#include "driver/model/gap.h"

namespace corvane {

class DriverObject;

struct DestroyArray {
    void operator()(SAFEARRAY* array) const { SafeArrayDestroy(array); }
};
using ArrayOwner = std::unique_ptr<SAFEARRAY, DestroyArray>;

// The array's elements, locked in place for as long as this lives.
template <class Element>
class LockedElements {
public:
    explicit LockedElements(SAFEARRAY* array) : Array_(array) {
        void* data = nullptr;
        const HRESULT result = SafeArrayAccessData(array, &data);
        if (FAILED(result)) throw Failure{result};
        First = static_cast<Element*>(data);
    }
    ~LockedElements() { SafeArrayUnaccessData(Array_); }
    LockedElements(const LockedElements&) = delete;
    LockedElements& operator=(const LockedElements&) = delete;

    Element* First = nullptr;

private:
    SAFEARRAY* Array_;
};

// A new array whose dimensions have these sizes, all elements empty.
ArrayOwner MakeArray(VARTYPE type, std::span<const ULONG> sizes);

SAFEARRAY* ToArray(std::span<const int16_t> samples);
SAFEARRAY* ToArray(std::span<const std::string> texts);

// Dimension 1 is the gap's four numbers, module, first kadr, kadrs and reason, adjacent in memory; dimension 2 the gap.
SAFEARRAY* ToArray(std::span<const Gap> gaps);

// Elements of a one-dimensional array of short, whatever its lower bound. None for an empty array and for null, which
// is a dynamic array that was never allocated. E_INVALIDARG for other elements and for more dimensions.
std::vector<int16_t> FromArray(SAFEARRAY* array);

// All unread kadrs: dimension 1 is the channel position, dimension 2 the kadr, where kadr 0 holds the channel numbers.
// The samples of one kadr are adjacent in memory.
SAFEARRAY* TakeInputData(DriverObject& driver);

}  // namespace corvane
