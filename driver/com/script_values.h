// Values as script engines pass and read them: variables by reference, arrays of VARIANT, array objects.
#pragma once

#include <windows.h>

#include <oleauto.h>

#include <cstdint>
#include <vector>

namespace corvane {

// A VARIANT that clears itself. It has no other data, so that an array of them is a list of arguments.
struct OwnedVariant : VARIANT {
    OwnedVariant() { VariantInit(this); }
    ~OwnedVariant() { VariantClear(this); }
    OwnedVariant(const OwnedVariant&) = delete;
    OwnedVariant& operator=(const OwnedVariant&) = delete;
};
static_assert(sizeof(OwnedVariant) == sizeof(VARIANT));

// The functions throw Failure: DISP_E_TYPEMISMATCH for what is no number, or no list of numbers, DISP_E_OVERFLOW for a
// number that doesn't fit.

int32_t ReadLong(const VARIANT& argument);

// One-dimensional arrays of VARIANT or of any numbers, by value or by reference, and objects with "length" and elements
// named by their index, as JScript's arrays are.
std::vector<int16_t> ReadShorts(const VARIANT& argument);

// Puts an array of VARIANT with the same bounds in place of a typed array of short, double or BSTR; leaves the rest
// alone.
void MakeReadable(VARIANT& value);

}  // namespace corvane
