// The driver through COM, as any host reaches it: the component is found by its name in the registry, and used through
// IADC3 and ICorvaneStatus.
#include "recorder/host_device.h"

#include <windows.h>
// windows.h first: the others build on it.
#include <ADCInterface3.h>
#include <CorvaneStatus.h>
#include <fmt/format.h>
#include <objbase.h>
#include <oleauto.h>

#include "platform/win32/wide_text.h"
#include "recorder/failure.h"
#include "recorder/messages.h"

namespace corvane::recorder {
namespace {

std::string Utf8(BSTR text) {
    return platform::Utf8(std::wstring_view(text, SysStringLen(text)));
}

uint32_t Code(HRESULT result) {
    return static_cast<uint32_t>(result);
}

void Check(HRESULT result, const char* member) {
    if (FAILED(result)) {
        throw Failure(ExitCode::NoDriver, Say("The driver's {} failed with 0x{:08X}.", member, Code(result)));
    }
}

[[noreturn]] void ThrowNotCreated(HRESULT result) {
    Text what = "Its file may be damaged: install Corvane again, then register it with: regsvr32 Corvane.adc";
    switch (Code(result)) {
        case 0x800401F3:  // CO_E_CLASSSTRING: no such name in the registry
        case 0x80040154:  // REGDB_E_CLASSNOTREG
            throw Failure(ExitCode::NoDriver, Say("Corvane is not registered. Register it with: regsvr32 Corvane.adc"));
        case 0x8007007E:  // a library was not found: on Windows
        case 0x80070005:  // the same under Wine
            what = "ltrapi.dll and ltr27api.dll must lie beside Corvane.adc; install the LTR server software.";
            break;
        case 0x800700C1:  // not a valid image
            what = "One of Corvane.adc, ltrapi.dll and ltr27api.dll is not a 32-bit library.";
            break;
        default:
            break;
    }
    throw Failure(ExitCode::NoDriver, Say("Corvane can't be loaded (0x{:08X}). {}", Code(result), Say(what)));
}

// The values of an array of any dimensions, in their order in memory, taken over from the driver and freed here.
template <class Element, class Value>
std::vector<Value> TakeArray(SAFEARRAY* array, const char* member, Value (*convert)(Element)) {
    void* data = nullptr;
    std::vector<Value> values;
    const HRESULT result = array == nullptr ? E_POINTER : SafeArrayAccessData(array, &data);
    if (SUCCEEDED(result)) {
        size_t count = 1;
        for (USHORT i = 0; i < array->cDims; i++) count *= array->rgsabound[i].cElements;
        const auto* elements = static_cast<const Element*>(data);
        for (size_t i = 0; i < count; i++) values.push_back(convert(elements[i]));
        SafeArrayUnaccessData(array);
    }
    if (array != nullptr) SafeArrayDestroy(array);
    Check(result, member);
    return values;
}

}  // namespace

struct HostDevice::Driver {
    Driver();
    ~Driver() {
        Status->Release();
        Device->Release();
        CoUninitialize();
    }
    Driver(const Driver&) = delete;
    Driver& operator=(const Driver&) = delete;

    template <class Value>
    Value Get(HRESULT (STDMETHODCALLTYPE IADC3::*member)(Value*), const char* name) const {
        Value value{};
        Check((Device->*member)(&value), name);
        return value;
    }

    template <class Value>
    Value Get(HRESULT (STDMETHODCALLTYPE ICorvaneStatus::*member)(Value*), const char* name) const {
        Value value{};
        Check((Status->*member)(&value), name);
        return value;
    }

    template <class Value>
    Value Get(HRESULT (STDMETHODCALLTYPE IADC3::*member)(short*, Value*), short index, const char* name) const {
        Value value{};
        Check((Device->*member)(&index, &value), name);
        return value;
    }

    IADC3* Device = nullptr;
    ICorvaneStatus* Status = nullptr;
};

namespace {

struct FreeText {
    void operator()(OLECHAR* text) const { SysFreeString(text); }
};
using TextOwner = std::unique_ptr<OLECHAR, FreeText>;

TextOwner BasicString(const std::string& utf8) {
    const std::wstring wide = platform::Wide(utf8);
    TextOwner text(SysAllocStringLen(wide.data(), static_cast<UINT>(wide.size())));
    if (!text) throw std::bad_alloc();
    return text;
}

std::string TakeText(BSTR text) {
    std::string utf8 = Utf8(text);
    SysFreeString(text);
    return utf8;
}

}  // namespace

HostDevice::Driver::Driver() {
    Check(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED), "start of COM");
    CLSID classId{};
    IUnknown* object = nullptr;
    HRESULT result = CLSIDFromProgID(L"Tessmark.Corvane", &classId);
    if (SUCCEEDED(result)) {
        result = CoCreateInstance(classId, nullptr, CLSCTX_INPROC_SERVER, IID_PPV_ARGS(&object));
    }
    if (FAILED(result)) {
        CoUninitialize();
        ThrowNotCreated(result);
    }
    result = object->QueryInterface(IID_PPV_ARGS(&Device));
    object->Release();
    if (FAILED(result)) {
        CoUninitialize();
        throw Failure(ExitCode::NoDriver,
                      Say("The component Tessmark.Corvane does not offer IADC3 (0x{:08X}). Another program may "
                          "have taken its name: register Corvane again with: regsvr32 Corvane.adc",
                          Code(result)));
    }
    result = Device->QueryInterface(IID_PPV_ARGS(&Status));
    if (FAILED(result)) {
        Device->Release();
        CoUninitialize();
        throw Failure(ExitCode::NoDriver,
                      Say("The registered Corvane can't tell which samples were measured (0x{:08X}): it is older "
                          "than this program. Register the Corvane.adc that came with it.",
                          Code(result)));
    }
}

HostDevice::HostDevice() : Driver_(std::make_unique<Driver>()) {}
HostDevice::~HostDevice() = default;

std::string HostDevice::ADCName() const {
    return TakeText(Driver_->Get(&IADC3::get_ADCName, "ADCName"));
}
int HostDevice::Resolution() const {
    return Driver_->Get(&IADC3::get_Resolution, "Resolution");
}
int16_t HostDevice::ChannelsCount() const {
    return Driver_->Get(&IADC3::get_ChannelsCount, "ChannelsCount");
}
float HostDevice::RateMax() const {
    return Driver_->Get(&IADC3::get_RateMax, "RateMax");
}

std::vector<std::string> HostDevice::Ranges() const {
    return TakeArray<BSTR>(Driver_->Get(&IADC3::get_Ranges, "Ranges"), "Ranges", Utf8);
}

bool HostDevice::Test() {
    return Driver_->Get(&IADC3::Test, "Test") != VARIANT_FALSE;
}
bool HostDevice::Busy() const {
    return Driver_->Get(&IADC3::get_Busy, "Busy") != VARIANT_FALSE;
}

std::string HostDevice::ChannelName(int16_t index) const {
    return TakeText(Driver_->Get(&IADC3::get_ChannelName, index, "ChannelName"));
}

int16_t HostDevice::ChannelRange(int16_t index) const {
    return Driver_->Get(&IADC3::get_ChannelRange, index, "ChannelRange");
}

float HostDevice::ChannelUnitScale(int16_t index) const {
    return Driver_->Get(&IADC3::get_ChannelUnitScale, index, "ChannelUnitScale");
}

float HostDevice::ChannelUnitOffset(int16_t index) const {
    return Driver_->Get(&IADC3::get_ChannelUnitOffset, index, "ChannelUnitOffset");
}

std::string HostDevice::ChannelUnitName(int16_t index) const {
    return TakeText(Driver_->Get(&IADC3::get_ChannelUnitName, index, "ChannelUnitName"));
}

float HostDevice::Rate() {
    return Driver_->Get(&IADC3::get_Rate, "Rate");
}
void HostDevice::SetRate(float rate) {
    Check(Driver_->Device->put_Rate(rate), "Rate");
}
void HostDevice::SetInputSizeData(int32_t size) {
    Check(Driver_->Device->put_InputSizeData(size), "InputSizeData");
}
int32_t HostDevice::InputSizeKadrs() const {
    return Driver_->Get(&IADC3::get_InputSizeKadrs, "InputSizeKadrs");
}
int32_t HostDevice::InputCountKadrs() const {
    return Driver_->Get(&IADC3::get_InputCountKadrs, "InputCountKadrs");
}

std::vector<int16_t> HostDevice::InputChannels() const {
    return TakeArray<short, int16_t>(Driver_->Get(&IADC3::get_InputChannels, "InputChannels"), "InputChannels",
                                     [](short number) { return number; });
}

void HostDevice::SetInputChannels(std::span<const int16_t> table) {
    SAFEARRAY* array = SafeArrayCreateVector(VT_I2, 0, static_cast<ULONG>(table.size()));
    if (array == nullptr) throw std::bad_alloc();
    for (LONG i = 0; i < static_cast<LONG>(table.size()); i++) {
        short number = table[static_cast<size_t>(i)];
        SafeArrayPutElement(array, &i, &number);
    }
    const HRESULT result = Driver_->Device->put_InputChannels(&array);
    SafeArrayDestroy(array);
    Check(result, "InputChannels");
}

bool HostDevice::StartRecord() {
    return Driver_->Get(&IADC3::StartRecord, "StartRecord") != VARIANT_FALSE;
}
void HostDevice::StopRecord() {
    Check(Driver_->Device->StopRecord(), "StopRecord");
}

int32_t HostDevice::GetData(std::span<int16_t> samples) {
    auto count = static_cast<LONG>(samples.size());
    LONG remaining = 0;
    LONG kadrs = 0;
    Check(Driver_->Device->GetData(samples.data(), &count, &remaining, &kadrs), "GetData");
    return kadrs;
}

std::string HostDevice::LastError() const {
    return TakeText(Driver_->Get(&IADC3::get_LastError, "LastError"));
}

bool HostDevice::HasDialogs() {
    return true;
}
void HostDevice::ShowSetting() {
    Driver_->Get(&IADC3::ShowSetting, "ShowSetting");
}

void HostDevice::SetInteractive(bool interactive) {
    Check(Driver_->Status->put_Interactive(interactive ? VARIANT_TRUE : VARIANT_FALSE), "Interactive");
}

bool HostDevice::SetServer(const std::string& address) {
    const HRESULT result = Driver_->Status->put_Server(BasicString(address).get());
    if (result == E_INVALIDARG) return false;
    Check(result, "Server");
    return true;
}

void HostDevice::SetCrateSerial(const std::string& serial) {
    Check(Driver_->Status->put_CrateSerial(BasicString(serial).get()), "CrateSerial");
}
std::string HostDevice::CrateInfo() const {
    return TakeText(Driver_->Get(&ICorvaneStatus::get_CrateInfo, "CrateInfo"));
}
int16_t HostDevice::ModulesCount() const {
    return Driver_->Get(&ICorvaneStatus::get_ModulesCount, "ModulesCount");
}

std::string HostDevice::ModuleInfo(int16_t index) const {
    BSTR text = nullptr;
    Check(Driver_->Status->get_ModuleInfo(index, &text), "ModuleInfo");
    return TakeText(text);
}

int64_t HostDevice::KadrsRecorded() const {
    return static_cast<int64_t>(Driver_->Get(&ICorvaneStatus::get_KadrsRecorded, "KadrsRecorded"));
}
int64_t HostDevice::KadrsRead() const {
    return static_cast<int64_t>(Driver_->Get(&ICorvaneStatus::get_KadrsRead, "KadrsRead"));
}

std::vector<Gap> HostDevice::Gaps() const {
    const std::vector<int64_t> numbers =
        TakeArray<double, int64_t>(Driver_->Get(&ICorvaneStatus::get_Gaps, "Gaps"), "Gaps",
                                   [](double number) { return static_cast<int64_t>(number); });
    std::vector<Gap> gaps;
    for (size_t i = 0; i + 3 < numbers.size(); i += 4) {
        gaps.push_back(
            {static_cast<int32_t>(numbers[i]), numbers[i + 1], numbers[i + 2], static_cast<GapReason>(numbers[i + 3])});
    }
    return gaps;
}

}  // namespace corvane::recorder
