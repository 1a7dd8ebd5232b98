#include "driver/com/arrays.h"

#include <new>

#include "driver/com/text.h"
#include "driver/driver_object.h"

namespace corvane {

namespace {

bool HoldsShorts(SAFEARRAY* array) {
    VARTYPE type = VT_EMPTY;
    // Hosts that fill in a descriptor of their own often leave the type out.
    if (FAILED(SafeArrayGetVartype(array, &type))) return SafeArrayGetElemsize(array) == sizeof(int16_t);
    return type == VT_I2;
}

}  // namespace

ArrayOwner MakeArray(VARTYPE type, std::span<const ULONG> sizes) {
    std::vector<SAFEARRAYBOUND> bounds;
    for (const ULONG size : sizes) bounds.push_back({size, 0});
    ArrayOwner array(SafeArrayCreate(type, static_cast<UINT>(bounds.size()), bounds.data()));
    if (!array) throw std::bad_alloc();
    return array;
}

SAFEARRAY* ToArray(std::span<const int16_t> samples) {
    const ULONG size = static_cast<ULONG>(samples.size());
    ArrayOwner array = MakeArray(VT_I2, {&size, 1});
    std::copy(samples.begin(), samples.end(), LockedElements<int16_t>(array.get()).First);
    return array.release();
}

SAFEARRAY* ToArray(std::span<const std::string> texts) {
    const ULONG size = static_cast<ULONG>(texts.size());
    ArrayOwner array = MakeArray(VT_BSTR, {&size, 1});
    {
        LockedElements<BSTR> elements(array.get());
        for (size_t i = 0; i < texts.size(); i++) elements.First[i] = ToBstr(texts[i]);
    }
    return array.release();
}

SAFEARRAY* ToArray(std::span<const Gap> gaps) {
    const ULONG sizes[] = {4, static_cast<ULONG>(gaps.size())};
    ArrayOwner array = MakeArray(VT_R8, sizes);
    {
        LockedElements<double> elements(array.get());
        double* next = elements.First;
        for (const Gap& gap : gaps) {
            *next++ = gap.Module;
            *next++ = static_cast<double>(gap.First);
            *next++ = static_cast<double>(gap.Kadrs);
            *next++ = static_cast<double>(gap.Reason);
        }
    }
    return array.release();
}

std::vector<int16_t> FromArray(SAFEARRAY* array) {
    if (array == nullptr) return {};
    if (SafeArrayGetDim(array) != 1 || !HoldsShorts(array)) throw Failure{E_INVALIDARG};
    const size_t size = array->rgsabound[0].cElements;
    if (size == 0) return {};
    if (array->pvData == nullptr) throw Failure{E_INVALIDARG};
    const LockedElements<int16_t> elements(array);
    return {elements.First, elements.First + size};
}

SAFEARRAY* TakeInputData(DriverObject& driver) {
    const InputDataShape shape = driver.NextInputData();
    const ULONG sizes[] = {static_cast<ULONG>(shape.Channels), static_cast<ULONG>(shape.Kadrs) + 1};
    ArrayOwner array = MakeArray(VT_I2, sizes);
    driver.TakeInputData(shape, LockedElements<int16_t>(array.get()).First);
    return array.release();
}

}  // namespace corvane
