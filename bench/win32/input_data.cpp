#include "bench/input_data.h"

#include <windows.h>
// windows.h first: the others build on it.
#include <ADCInterface3.h>
#include <objbase.h>
#include <oleauto.h>

#include <stdexcept>

namespace corvane::bench {

namespace {

void Check(HRESULT result, const char* member) {
    if (FAILED(result)) throw std::runtime_error(member);
}

}  // namespace

struct InputDataHost::Driver {
    Driver() {
        CLSID classIdentifier = {};
        Check(CoInitialize(nullptr), "CoInitialize");
        Check(CLSIDFromProgID(L"Tessmark.Corvane", &classIdentifier), "CLSIDFromProgID");
        Check(CoCreateInstance(classIdentifier, nullptr, CLSCTX_INPROC_SERVER, __uuidof(IADC3),
                               reinterpret_cast<void**>(&Object)),
              "CoCreateInstance");
    }
    ~Driver() {
        SafeArrayDestroy(Data);
        Object->Release();
        CoUninitialize();
    }
    IADC3* Object = nullptr;
    SAFEARRAY* Data = nullptr;
};

InputDataHost::InputDataHost() : Driver_(std::make_unique<Driver>()) {}
InputDataHost::~InputDataHost() = default;

size_t InputDataHost::Take() {
    SafeArrayDestroy(Driver_->Data);
    Check(Driver_->Object->get_InputData(&Driver_->Data), "InputData");
    const SAFEARRAYBOUND* bounds = Driver_->Data->rgsabound;
    return size_t{bounds[0].cElements} * bounds[1].cElements;
}

}  // namespace corvane::bench
