// The dispatch interfaces of the object. The object's own one is that of _Corvane, which also answers the members of
// IADC3 and of ICorvaneStatus by name, so that a script can record. There, and only there, arrays are returned as
// arrays of VARIANT, and arguments are accepted in every form that a script makes. Unknown names and identifiers, wrong
// counts and types are answered with automation's own results.
#pragma once

#include "driver/com/automation.h"
#include "driver/com/identifiers.h"
#include "driver/driver_object.h"

namespace corvane {

// IADC3's own IDispatch. While a recording runs it ignores any value for InputChannels, as the member ignores any
// table.
class TypedMembers : public Dual<IADC3, ADCInterface3Resource> {
public:
    HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID reserved, LCID locale, WORD flags, DISPPARAMS* parameters,
                                     VARIANT* result, EXCEPINFO* exception, UINT* argument) override;

protected:
    TypedMembers() = default;
    ~TypedMembers() = default;
};

using StatusMembers = Dual<ICorvaneStatus, CorvaneStatusResource>;

class ScriptMembers : public Dual<_Corvane, TessmarkResource> {
public:
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID reserved, LPOLESTR* names, UINT count, LCID locale,
                                            DISPID* ids) override;
    HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID reserved, LCID locale, WORD flags, DISPPARAMS* parameters,
                                     VARIANT* result, EXCEPINFO* exception, UINT* argument) override;

protected:
    // The interfaces belong to the same object, and what they do to `driver`.
    ScriptMembers(IADC3& members, ICorvaneStatus& status, DriverObject& driver)
        : Members_(members), Status_(status), Driver_(driver) {}
    ~ScriptMembers() = default;

private:
    IADC3& Members_;
    ICorvaneStatus& Status_;
    DriverObject& Driver_;
};

}  // namespace corvane
