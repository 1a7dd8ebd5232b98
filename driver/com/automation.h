// The IDispatch part of the component's dual interfaces, answered from the type libraries in the component's own file,
// so that it works whether or not anything is registered.
#pragma once

#include <windows.h>

#include <oleauto.h>

#include "driver/com/guard.h"

namespace corvane {

// The description of one interface, loaded when it is first needed: most hosts never need it.
class TypeDescription {
public:
    TypeDescription(int resource, const GUID& interfaceIdentifier)
        : Resource_(resource), Identifier_(interfaceIdentifier) {}
    ~TypeDescription();
    TypeDescription(const TypeDescription&) = delete;
    TypeDescription& operator=(const TypeDescription&) = delete;

    // Throws Failure when the type library can't be loaded.
    ITypeInfo* Get();

private:
    int Resource_;
    const GUID& Identifier_;
    ITypeInfo* Info_ = nullptr;
};

// Callers of IDispatch have to pass IID_NULL for the parameter that is reserved.
inline void CheckReserved(REFIID reserved) {
    Check(reserved == IID_NULL ? S_OK : DISP_E_UNKNOWNINTERFACE);
}

template <class Interface, int Resource>
class Dual : public Interface {
public:
    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override {
        return Guard(count, [] { return 1u; });
    }

    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT index, LCID, ITypeInfo** info) override {
        return Guard(info, [&] {
            Check(index == 0 ? S_OK : DISP_E_BADINDEX);
            ITypeInfo* own = Type_.Get();
            own->AddRef();
            return own;
        });
    }

    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID reserved, LPOLESTR* names, UINT count, LCID, DISPID* ids) override {
        return Guard(
            [&] {
                CheckReserved(reserved);
                Check(DispGetIDsOfNames(Type_.Get(), names, count, ids));
            },
            names, ids);
    }

    HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID reserved, LCID, WORD flags, DISPPARAMS* parameters,
                                     VARIANT* result, EXCEPINFO* exception, UINT* argument) override {
        Interface* self = this;
        return Guard(
            [&] {
                CheckReserved(reserved);
                Check(DispInvoke(self, Type_.Get(), id, flags, parameters, result, exception, argument));
            },
            parameters);
    }

protected:
    Dual() : Type_(Resource, __uuidof(Interface)) {}
    ~Dual() = default;

private:
    TypeDescription Type_;
};

}  // namespace corvane
