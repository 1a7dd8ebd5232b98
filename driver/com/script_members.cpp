#include "driver/com/script_members.h"

#include <algorithm>
#include <vector>

#include "driver/com/script_values.h"

namespace corvane {

namespace {

// Dispatch identifiers, as IADC3's description has them.
constexpr DISPID GetADC3Member = 0x60030031, InputChannelsMember = 21, InputDataMember = 26, GetDataMember = 27;

// ICorvaneStatus has identifiers that no member of IADC3 can have.
constexpr DISPID FirstStatusMember = 101, LastStatusMember = 109;

bool IsStatusMember(DISPID id) {
    return id >= FirstStatusMember && id <= LastStatusMember;
}

// Writes a number back into an argument: a script's variable, or a long by reference. An argument passed by value stays
// as it is.
void GiveBack(VARIANT& argument, LONG number) {
    if (argument.vt == (VT_BYREF | VT_VARIANT)) {
        VariantClear(argument.pvarVal);
        argument.pvarVal->vt = VT_I4;
        argument.pvarVal->lVal = number;
    } else if (argument.vt == (VT_BYREF | VT_I4)) {
        *argument.plVal = number;
    }
}

// An array of VARIANT with these dimensions, of the samples that `take` writes. It takes them when all memory is there:
// none is lost for want of it.
template <class Take>
ArrayOwner TakeReadable(std::span<const ULONG> sizes, Take take) {
    ArrayOwner array = MakeArray(VT_VARIANT, sizes);
    size_t count = 1;
    for (const ULONG size : sizes) count *= size;
    std::vector<int16_t> samples(count);
    const LockedElements<VARIANT> elements(array.get());
    take(samples.data());
    for (size_t i = 0; i < count; i++) {
        elements.First[i].vt = VT_I2;
        elements.First[i].iVal = samples[i];
    }
    return array;
}

// GetData for a script, whose variable can't be the plain buffer that IADC3 needs: the variable gets an array of the
// samples read, at most `Count`.
void GetDataIntoVariable(DriverObject& driver, const DISPPARAMS& parameters, VARIANT* result) {
    VARIANT& remainingArgument = parameters.rgvarg[0];
    VARIANT& countArgument = parameters.rgvarg[1];
    VARIANT& dataArgument = parameters.rgvarg[2];
    int32_t count = std::clamp(ReadLong(countArgument), 0, driver.InputCountData()), remaining = 0, kadrs = 0;
    count -= count % driver.NextInputData().Channels;
    const ULONG size = static_cast<ULONG>(count);
    OwnedVariant data;
    data.parray = TakeReadable({&size, 1}, [&](int16_t* samples) {
                      kadrs = driver.GetData(samples, count, remaining);
                  }).release();
    data.vt = VT_ARRAY | VT_VARIANT;
    VariantClear(dataArgument.pvarVal);
    std::swap(*dataArgument.pvarVal, static_cast<VARIANT&>(data));
    GiveBack(countArgument, count);
    GiveBack(remainingArgument, remaining);
    if (result == nullptr) return;
    result->vt = VT_I4;
    result->lVal = kadrs;
}

// InputData for a script.
void TakeInputDataInto(DriverObject& driver, VARIANT& result) {
    const InputDataShape shape = driver.NextInputData();
    const ULONG sizes[] = {static_cast<ULONG>(shape.Channels), static_cast<ULONG>(shape.Kadrs) + 1};
    result.parray = TakeReadable(sizes, [&](int16_t* samples) { driver.TakeInputData(shape, samples); }).release();
    result.vt = VT_ARRAY | VT_VARIANT;
}

// True when the call is GetData with a script's variable. False for other members and for a short by reference, which
// is the first element of a compiled caller's buffer of `Count` samples: such calls are passed on as they are. Throws
// for anything else, which would be too short for the samples.
bool IsScriptsGetData(DISPID id, WORD flags, const DISPPARAMS& parameters, UINT* argument) {
    constexpr UINT Data = 2;
    if (id != GetDataMember || (flags & DISPATCH_METHOD) == 0) return false;
    if (parameters.cNamedArgs != 0) throw Failure{DISP_E_NONAMEDARGS};
    if (parameters.cArgs != 3) throw Failure{DISP_E_BADPARAMCOUNT};
    const VARTYPE type = parameters.rgvarg[Data].vt;
    if (type == (VT_BYREF | VT_VARIANT)) return true;
    if (type == (VT_BYREF | VT_I2)) return false;
    if (argument != nullptr) *argument = Data;
    throw Failure{DISP_E_TYPEMISMATCH};
}

// True when the call asks for InputData and has use for it. Other calls are answered as the interface's own dispatch
// answers them.
bool IsScriptsInputData(DISPID id, WORD flags, const DISPPARAMS& parameters, const VARIANT* result) {
    return id == InputDataMember && (flags & DISPATCH_PROPERTYGET) != 0 && parameters.cArgs == 0 && result != nullptr;
}

// True when a table of channels is set while a recording runs, which ignores it.
bool IsLateTable(IADC3& driver, DISPID id, WORD flags, const DISPPARAMS& parameters) {
    VARIANT_BOOL busy = VARIANT_FALSE;
    return id == InputChannelsMember && flags == DISPATCH_PROPERTYPUT && parameters.cArgs == 1 &&
           SUCCEEDED(driver.get_Busy(&busy)) && busy != VARIANT_FALSE;
}

// Calls a member with the values of its arguments, which is enough because no member but GetData changes them. The
// interface's own dispatch converts them to what the member needs.
void InvokeWithValues(IDispatch& members, DISPID id, WORD flags, const DISPPARAMS& parameters, VARIANT* result,
                      EXCEPINFO* exception, UINT* argument) {
    std::vector<OwnedVariant> values(parameters.cArgs);
    ArrayOwner table;
    SAFEARRAY* tablePointer = nullptr;
    DISPPARAMS plain = parameters;
    plain.rgvarg = values.data();
    for (UINT i = 0; i < parameters.cArgs; i++) {
        if (argument != nullptr) *argument = i;
        if (id == InputChannelsMember && flags == DISPATCH_PROPERTYPUT && parameters.cArgs == 1) {
            table.reset(ToArray(ReadShorts(parameters.rgvarg[i])));
            tablePointer = table.get();
            values[i].vt = VT_BYREF | VT_ARRAY | VT_I2;
            values[i].pparray = &tablePointer;
        } else {
            Check(VariantCopyInd(&values[i], &parameters.rgvarg[i]));
        }
    }
    Check(members.Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, flags, &plain, result, exception, argument));
    if (result != nullptr) MakeReadable(*result);
}

}  // namespace

HRESULT TypedMembers::Invoke(DISPID id, REFIID reserved, LCID locale, WORD flags, DISPPARAMS* parameters,
                             VARIANT* result, EXCEPINFO* exception, UINT* argument) {
    if (parameters != nullptr && reserved == IID_NULL && IsLateTable(*this, id, flags, *parameters)) return S_OK;
    return Dual::Invoke(id, reserved, locale, flags, parameters, result, exception, argument);
}

HRESULT ScriptMembers::GetIDsOfNames(REFIID reserved, LPOLESTR* names, UINT count, LCID locale, DISPID* ids) {
    const HRESULT own = Dual::GetIDsOfNames(reserved, names, count, locale, ids);
    if (own != DISP_E_UNKNOWNNAME || count == 0 || ids[0] != DISPID_UNKNOWN) return own;
    const HRESULT drivers = Members_.GetIDsOfNames(reserved, names, count, locale, ids);
    if (drivers != DISP_E_UNKNOWNNAME || ids[0] != DISPID_UNKNOWN) return drivers;
    return Status_.GetIDsOfNames(reserved, names, count, locale, ids);
}

HRESULT ScriptMembers::Invoke(DISPID id, REFIID reserved, LCID locale, WORD flags, DISPPARAMS* parameters,
                              VARIANT* result, EXCEPINFO* exception, UINT* argument) {
    if (id == GetADC3Member) {
        return Dual::Invoke(id, reserved, locale, flags, parameters, result, exception, argument);
    }
    return Guard(
        [&] {
            CheckReserved(reserved);
            // Some script engines can't tell a value from a reference when they assign, and set both flags.
            constexpr WORD Puts = DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF;
            const WORD asked = (flags & Puts) != 0 ? WORD{DISPATCH_PROPERTYPUT} : flags;
            if (IsLateTable(Members_, id, asked, *parameters)) return;
            if (IsStatusMember(id)) {
                InvokeWithValues(Status_, id, asked, *parameters, result, exception, argument);
            } else if (IsScriptsGetData(id, asked, *parameters, argument)) {
                GetDataIntoVariable(Driver_, *parameters, result);
            } else if (IsScriptsInputData(id, asked, *parameters, result)) {
                TakeInputDataInto(Driver_, *result);
            } else if (id == GetDataMember) {
                Check(Members_.Invoke(id, reserved, locale, asked, parameters, result, exception, argument));
            } else {
                InvokeWithValues(Members_, id, asked, *parameters, result, exception, argument);
            }
        },
        parameters);
}

}  // namespace corvane
