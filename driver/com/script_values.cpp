#include "driver/com/script_values.h"

#include <new>
#include <string>

#include "driver/com/arrays.h"
#include "driver/com/failure.h"

namespace corvane {

namespace {

// Elements of a list, at most: as many as there are different channel numbers.
constexpr int32_t LongestList = 65536;

int16_t ReadShort(VARIANT& element) {
    Check(VariantChangeType(&element, &element, 0, VT_I2));
    return element.iVal;
}

std::vector<int16_t> ReadArray(SAFEARRAY* array) {
    VARTYPE type = VT_EMPTY;
    if (array == nullptr) return {};  // never allocated
    if (SafeArrayGetDim(array) != 1) throw Failure{DISP_E_TYPEMISMATCH};
    Check(SafeArrayGetVartype(array, &type));
    // A VARIANT has room for numbers of at most 8 bytes; decimals are larger, and records are no numbers.
    if (type != VT_VARIANT && (type == VT_RECORD || SafeArrayGetElemsize(array) > sizeof(LONGLONG))) {
        throw Failure{DISP_E_TYPEMISMATCH};
    }
    std::vector<int16_t> numbers;
    LONG position = array->rgsabound[0].lLbound;
    for (ULONG i = 0; i < array->rgsabound[0].cElements; i++, position++) {
        OwnedVariant element;
        if (type == VT_VARIANT) {
            Check(SafeArrayGetElement(array, &position, static_cast<VARIANT*>(&element)));
        } else {
            Check(SafeArrayGetElement(array, &position, &element.llVal));
            element.vt = type;
        }
        numbers.push_back(ReadShort(element));
    }
    return numbers;
}

void GetProperty(IDispatch* object, std::wstring name, OwnedVariant& result) {
    LPOLESTR names = name.data();
    DISPID id = DISPID_UNKNOWN;
    DISPPARAMS none = {};
    if (FAILED(object->GetIDsOfNames(IID_NULL, &names, 1, LOCALE_USER_DEFAULT, &id)) ||
        FAILED(object->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_PROPERTYGET, &none, &result, nullptr,
                              nullptr))) {
        throw Failure{DISP_E_TYPEMISMATCH};
    }
}

std::vector<int16_t> ReadObject(IDispatch* object) {
    if (object == nullptr) throw Failure{DISP_E_TYPEMISMATCH};
    OwnedVariant length;
    GetProperty(object, L"length", length);
    const int32_t count = ReadLong(length);
    if (count < 0 || count > LongestList) throw Failure{DISP_E_OVERFLOW};
    std::vector<int16_t> numbers;
    for (int32_t i = 0; i < count; i++) {
        OwnedVariant element;
        GetProperty(object, std::to_wstring(i), element);
        numbers.push_back(ReadShort(element));
    }
    return numbers;
}

template <class Number>
void CopyNumbers(SAFEARRAY* source, VARTYPE type, Number VARIANT::*number, VARIANT* destination, size_t count) {
    const LockedElements<Number> elements(source);
    for (size_t i = 0; i < count; i++) {
        destination[i].vt = type;
        destination[i].*number = elements.First[i];
    }
}

void CopyElements(SAFEARRAY* source, VARTYPE type, VARIANT* destination, size_t count) {
    if (type == VT_I2) return CopyNumbers(source, type, &VARIANT::iVal, destination, count);
    if (type == VT_R8) return CopyNumbers(source, type, &VARIANT::dblVal, destination, count);
    const LockedElements<BSTR> elements(source);
    for (size_t i = 0; i < count; i++) {
        destination[i].bstrVal = SysAllocStringLen(elements.First[i], SysStringLen(elements.First[i]));
        if (destination[i].bstrVal == nullptr) throw std::bad_alloc();
        destination[i].vt = VT_BSTR;
    }
}

}  // namespace

int32_t ReadLong(const VARIANT& argument) {
    OwnedVariant plain;
    Check(VariantCopyInd(&plain, const_cast<VARIANT*>(&argument)));
    Check(VariantChangeType(&plain, &plain, 0, VT_I4));
    return plain.lVal;
}

std::vector<int16_t> ReadShorts(const VARIANT& argument) {
    OwnedVariant plain;
    Check(VariantCopyInd(&plain, const_cast<VARIANT*>(&argument)));
    if (plain.vt == VT_DISPATCH) return ReadObject(plain.pdispVal);
    if ((plain.vt & VT_ARRAY) == 0) throw Failure{DISP_E_TYPEMISMATCH};
    return ReadArray(plain.parray);
}

void MakeReadable(VARIANT& value) {
    const int element = value.vt ^ VT_ARRAY;
    if (element != VT_I2 && element != VT_R8 && element != VT_BSTR) return;
    const UINT dimensions = SafeArrayGetDim(value.parray);
    // A descriptor lists the bounds from the last dimension to the first. The elements are in the same order in both
    // arrays.
    const std::vector<SAFEARRAYBOUND> bounds(std::make_reverse_iterator(value.parray->rgsabound + dimensions),
                                             std::make_reverse_iterator(value.parray->rgsabound + 0));
    ArrayOwner readable(SafeArrayCreate(VT_VARIANT, dimensions, const_cast<SAFEARRAYBOUND*>(bounds.data())));
    if (!readable) throw std::bad_alloc();
    size_t count = 1;
    for (const SAFEARRAYBOUND& bound : bounds) count *= bound.cElements;
    CopyElements(value.parray, static_cast<VARTYPE>(element), LockedElements<VARIANT>(readable.get()).First, count);
    VariantClear(&value);
    value.vt = VT_ARRAY | VT_VARIANT;
    value.parray = readable.release();
}

}  // namespace corvane
